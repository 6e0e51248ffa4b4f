#include "tools/common/FileInput.h"

#include <cerrno>

#include <unistd.h>

namespace
{

template <class Read> std::ptrdiff_t fill(std::span<std::byte> buffer, const Read& read)
{
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t count = read(buffer.subspan(filled), filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return -1;
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    return static_cast<std::ptrdiff_t>(filled);
}

} // namespace

std::ptrdiff_t readFully(int descriptor, std::span<std::byte> buffer)
{
    return fill(buffer, [&](std::span<std::byte> rest, std::size_t) {
        return ::read(descriptor, rest.data(), rest.size());
    });
}

std::ptrdiff_t readFullyAt(int descriptor, std::uint64_t offset, std::span<std::byte> buffer)
{
    return fill(buffer, [&](std::span<std::byte> rest, std::size_t filled) {
        return ::pread(descriptor, rest.data(), rest.size(), static_cast<off_t>(offset + filled));
    });
}
