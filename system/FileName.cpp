#include "system/FileName.h"

#include "system/FileDescriptor.h"
#include "system/LastError.h"
#include "system/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>

namespace
{

// How file systems tell that they do not know a call or cannot do it: each has its own way.
bool isUnsupported(std::error_code failure)
{
    constexpr std::array reasons{EINVAL, ENOSYS, EOPNOTSUPP, EPERM, EMLINK, EACCES};
    return std::ranges::count(reasons, failure.value()) > 0;
}

// A second link never replaces anything. Not both names are left, should the first one have to
// stay.
std::error_code renameByLink(int folder, const std::string& from, const std::string& to)
{
    if (const auto failure = errorOf(::linkat(folder, from.c_str(), folder, to.c_str(), 0)))
        return failure;
    const auto failure = errorOf(::unlinkat(folder, from.c_str(), 0));
    if (failure)
        ::unlinkat(folder, to.c_str(), 0);
    return failure;
}

// For file systems without hard links (FAT): the name is taken by an empty file, which is then
// replaced.
std::error_code renameOverReservation(int folder, const std::string& from, const std::string& to)
{
    const FileDescriptor reservation(
        ::openat(folder, to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!reservation)
        return lastError();
    const auto failure = errorOf(::renameat(folder, from.c_str(), folder, to.c_str()));
    if (failure)
        ::unlinkat(folder, to.c_str(), 0);
    return failure;
}

} // namespace

std::string FileName::nextFree(
    std::string_view name, bool isFolder, const std::function<bool(const std::string&)>& isTaken)
{
    const std::size_t dot = isFolder ? std::string_view::npos : name.rfind('.');
    const bool hasExtension = dot != std::string_view::npos && dot != 0;
    const std::string_view stem = hasExtension ? name.substr(0, dot) : name;
    const std::string_view extension = hasExtension ? name.substr(dot) : "";
    for (unsigned number = 2;; ++number) {
        std::string tail = " " + std::to_string(number);
        tail += extension;
        const std::size_t room = tail.size() < longestInBytes ? longestInBytes - tail.size() : 0;
        std::string candidate(Utf8::shortened(stem, room));
        candidate += tail;
        if (!isTaken(candidate))
            return candidate;
    }
}

std::error_code FileName::rename(
    int folder, const std::string& from, const std::string& to, Existing existing)
{
    if (existing == Existing::replace)
        return errorOf(
            retryOnInterrupt([&] { return ::renameat(folder, from.c_str(), folder, to.c_str()); }));
    const auto renamed = errorOf(retryOnInterrupt(
        [&] { return ::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE); }));
    if (!isUnsupported(renamed))
        return renamed;
    const auto linked = renameByLink(folder, from, to);
    return isUnsupported(linked) ? renameOverReservation(folder, from, to) : linked;
}
