#include "tools/common/OwnFiles.h"

#include "system/PathString.h"

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>

OwnFiles::OwnFiles(const OutputFile& output, const std::string& workingFolder)
    : _output(output.status())
{
    const std::unique_ptr<char, void (*)(void*)> real(
        ::realpath(workingFolder.c_str(), nullptr), std::free);
    if (!real && errno == ENOMEM)
        throw std::bad_alloc();
    FileStatus status{};
    if (real && ScratchName::isOne(PathString::lastPathComponent(real.get()))
        && ::stat(real.get(), &status) == 0)
        _scratchFolder = status;
}
