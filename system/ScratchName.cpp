#include "system/ScratchName.h"

#include "system/FileDescriptor.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>

namespace
{

// What a name has after the prefix and the process number; "?" when it does not begin like that.
std::string_view tailOf(std::string_view name)
{
    if (!name.starts_with(ScratchName::prefix))
        return "?";
    name.remove_prefix(ScratchName::prefix.size());
    const std::size_t end = std::min(name.find_first_not_of("0123456789", 1), name.size());
    return name.starts_with('-') && end > 1 ? name.substr(end) : "?";
}

bool isRandom(std::string_view tail)
{
    constexpr std::size_t letters = 6;
    return tail.starts_with('-') && tail.size() == 1 + letters;
}

} // namespace

bool ScratchName::isOne(std::string_view name)
{
    return name.starts_with(prefix)
        || (name.starts_with('.') && name.substr(1).starts_with(prefix));
}

bool ScratchName::isTemporary(std::string_view name)
{
    return tailOf(name).empty() || isRandom(tailOf(name));
}

bool ScratchName::isPrivate(std::string_view name)
{
    return name.starts_with('.') && isRandom(tailOf(name.substr(1)));
}

bool ScratchName::isInUse(int inFolder, const std::string& name)
{
    if (!isOne(name))
        return false;
    const FileDescriptor folder(
        ::openat(inFolder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return folder && ::flock(folder.number(), LOCK_SH | LOCK_NB) != 0
        && (errno == EWOULDBLOCK || isPrivate(name));
}
