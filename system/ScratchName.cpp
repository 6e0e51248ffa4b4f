#include "system/ScratchName.h"

#include "system/FileDescriptor.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>

bool ScratchName::isOne(std::string_view name)
{
    return name.starts_with(prefix)
        || (name.starts_with('.') && name.substr(1).starts_with(prefix));
}

bool ScratchName::isInUse(int inFolder, const std::string& name)
{
    if (!isOne(name))
        return false;
    const FileDescriptor folder(
        ::openat(inFolder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return folder && ::flock(folder.number(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}
