#include "platform/base/files/FileAttributes.h"

#include "system/FileStatus.h"
#include "system/LastError.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include <sys/xattr.h>

namespace
{

bool isOfTheSystem(std::string_view name)
{
    constexpr std::array<std::string_view, 3> spaces{"security.", "system.", "trusted."};
    return std::ranges::any_of(spaces, [&](auto space) { return name.starts_with(space); });
}

// Where a file system does not have what a call is about, or knows nothing like it.
bool isUnknown(std::error_code reason)
{
    constexpr std::array reasons{EPERM, EOPNOTSUPP, ENOSYS, EINVAL};
    return std::ranges::count(reasons, reason.value()) > 0;
}

std::error_code copyExtended(int from, int to)
{
    const ssize_t needed = ::flistxattr(from, nullptr, 0);
    if (needed < 0)
        return errno == EOPNOTSUPP ? std::error_code() : lastError();
    std::string names(static_cast<std::size_t>(needed), '\0');
    const ssize_t size = needed == 0 ? 0 : ::flistxattr(from, names.data(), names.size());
    if (size <= 0)
        return errorOf(size);
    std::error_code failure;
    std::string value(65536, '\0'); // as long as the kernel lets one be
    for (ssize_t offset = 0; offset < size;) {
        const std::string name = names.c_str() + offset;
        offset += static_cast<ssize_t>(name.size()) + 1;
        const ssize_t length = ::fgetxattr(from, name.c_str(), value.data(), value.size());
        const bool isGone = length < 0 && errno == ENODATA;
        const bool isKept = length >= 0
            && ::fsetxattr(to, name.c_str(), value.data(), static_cast<std::size_t>(length), 0)
                == 0;
        if (!isGone && !isKept && !isOfTheSystem(name) && !failure)
            failure = lastError();
    }
    return failure;
}

} // namespace

std::error_code FileAttributes::copy(int from, int to)
{
    FileStatus status{};
    if (::fstat(from, &status) != 0)
        return lastError();
    std::error_code failure = copyExtended(from, to);
    const auto note = [&](long result) {
        if (const auto reason = errorOf(result); reason && !isUnknown(reason) && !failure)
            failure = reason;
    };
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    note(::fchmod(to, status.st_mode & 07777));
    note(::futimens(to, times.data()));
    return failure;
}
