#include "tests/support/TestFolder.h"

#include "tests/support/Run.h"

#include <cstdlib>
#include <string>
#include <system_error>

namespace support
{

TestFolder::TestFolder()
{
    const char* const parent = std::getenv("TMPDIR");
    std::string name = std::string(parent ? parent : "/tmp") + "/parcelo-test-XXXXXX";
    if (!mkdtemp(name.data()))
        throw std::system_error(errno, std::generic_category(), name);
    _path = std::filesystem::canonical(name);
}

TestFolder::~TestFolder()
{
    run({"sh", "-c", R"(rm -rf "$0" 2> /dev/null || { chmod -R u+rwx "$0"; rm -rf "$0"; })",
        _path});
}

} // namespace support
