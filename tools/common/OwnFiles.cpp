#include "tools/common/OwnFiles.h"

#include "tools/common/ItemName.h"

#include <cstdlib>
#include <memory>
#include <string_view>

namespace
{

struct Free {
    void operator()(char* text) const { std::free(text); }
};

bool isSame(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

} // namespace

OwnFiles::OwnFiles(const OutputFile& output, const std::string& workingFolder)
    : _output(output.status())
{
    const std::unique_ptr<char, Free> real(realpath(workingFolder.c_str(), nullptr));
    struct stat status {
    };
    if (!real || stat(real.get(), &status) != 0)
        return;
    const std::string_view path(real.get());
    if (isScratchFolderName(path.substr(path.rfind('/') + 1)))
        _scratchFolder = status;
}

bool OwnFiles::isOutput(const struct stat& status) const
{
    return isSame(_output, status);
}

bool OwnFiles::isScratchFolder(const struct stat& status) const
{
    return _scratchFolder && isSame(*_scratchFolder, status);
}
