#include "system/FileBytes.h"

#include "system/FileDescriptor.h"
#include "system/FileStatus.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace
{

template <typename Read> std::ptrdiff_t fill(std::span<std::byte> buffer, const Read& read)
{
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t count
            = retryOnInterrupt([&] { return read(buffer.subspan(filled), filled); });
        if (count < 0)
            return -1;
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    return static_cast<std::ptrdiff_t>(filled);
}

template <typename Write> bool drain(std::span<const std::byte> bytes, const Write& write)
{
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count
            = retryOnInterrupt([&] { return write(bytes.subspan(written), written); });
        if (count < 0)
            return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

std::ptrdiff_t FileBytes::readFully(int descriptor, std::span<std::byte> buffer)
{
    return fill(buffer, [&](std::span<std::byte> rest, std::size_t) {
        return ::read(descriptor, rest.data(), rest.size());
    });
}

std::ptrdiff_t FileBytes::readFullyAt(
    int descriptor, std::uint64_t offset, std::span<std::byte> buffer)
{
    return fill(buffer, [&](std::span<std::byte> rest, std::size_t filled) {
        return ::pread(descriptor, rest.data(), rest.size(), static_cast<off_t>(offset + filled));
    });
}

std::optional<std::string> FileBytes::readWhole(
    const std::filesystem::path& path, std::size_t limit)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    FileStatus status{};
    if (!file || ::fstat(file.number(), &status) != 0)
        return std::nullopt;
    const bool isFile = S_ISREG(status.st_mode);
    if (!isFile || static_cast<std::uint64_t>(status.st_size) > limit) {
        errno = isFile ? EFBIG : EINVAL;
        return std::nullopt;
    }
    // One byte more than it should hold, to see whether it grows meanwhile.
    std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t size = 0;
    while (size <= limit) {
        const std::ptrdiff_t count
            = readFully(file.number(), std::as_writable_bytes(std::span(bytes).subspan(size)));
        if (count < 0)
            return std::nullopt;
        size += static_cast<std::size_t>(count);
        if (size < bytes.size()) {
            bytes.resize(size);
            return bytes;
        }
        bytes.resize(2 * bytes.size());
    }
    errno = EFBIG;
    return std::nullopt;
}

bool FileBytes::writeAll(int descriptor, std::span<const std::byte> bytes)
{
    return drain(bytes, [&](std::span<const std::byte> rest, std::size_t) {
        return ::write(descriptor, rest.data(), rest.size());
    });
}

bool FileBytes::writeAll(int descriptor, std::string_view text)
{
    return writeAll(descriptor, std::as_bytes(std::span(text)));
}

bool FileBytes::writeAllAt(int descriptor, std::uint64_t offset, std::span<const std::byte> bytes)
{
    return drain(bytes, [&](std::span<const std::byte> rest, std::size_t written) {
        return ::pwrite(descriptor, rest.data(), rest.size(), static_cast<off_t>(offset + written));
    });
}

bool FileBytes::flush(int descriptor)
{
    return retryOnInterrupt([&] {
        FileDescriptor another(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
        return another && another.close() ? 0 : -1;
    }) == 0;
}
