// A fresh empty folder for one test, removed with everything in it by the destructor, whatever
// permissions and depth the test left there. It lies in $TMPDIR, or in /tmp.
#pragma once

#include "tests/support/Run.h"

#include <system_error>

namespace support
{

class TestFolder
{
public:
    TestFolder()
    {
        std::string name = std::filesystem::temp_directory_path() / "parcelo-test-XXXXXX";
        if (!::mkdtemp(name.data()))
            throw std::system_error(errno, std::generic_category(), name);
        _path = std::filesystem::canonical(name);
    }
    ~TestFolder()
    {
        run({"sh", "-c", R"(rm -rf "$0" 2> /dev/null || { chmod -R u+rwx "$0"; rm -rf "$0"; })",
            _path});
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& path() const { return _path; }
    std::filesystem::path operator/(std::string_view name) const { return _path / name; }

private:
    std::filesystem::path _path;
};

} // namespace support
