// A fresh empty folder for one test, removed with everything in it by the destructor, whatever
// permissions and depth the test left there. It lies in $TMPDIR, or in /tmp.
#pragma once

#include <filesystem>
#include <string_view>

namespace support
{

class TestFolder
{
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& path() const { return _path; }
    std::filesystem::path operator/(std::string_view name) const { return _path / name; }

private:
    std::filesystem::path _path;
};

} // namespace support
