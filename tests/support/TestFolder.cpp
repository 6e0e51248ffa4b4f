#include "tests/support/TestFolder.h"

#include "tests/support/Files.h"

#include <cstdlib>
#include <string>
#include <system_error>

namespace support
{

TestFolder::TestFolder()
{
    const char* parent = std::getenv("TMPDIR");
    std::string name = std::string(parent ? parent : "/tmp") + "/parcelo-test-XXXXXX";
    if (!mkdtemp(name.data()))
        throw std::system_error(errno, std::generic_category(), name);
    _path = std::filesystem::canonical(name);
}

TestFolder::~TestFolder()
{
    removeTree(_path);
}

} // namespace support
