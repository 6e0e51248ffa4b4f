#include "tools/common/SourceFile.h"

#include "system/FileBytes.h"
#include "tools/common/Compressor.h"
#include "tools/common/Failure.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

SourceFile::SourceFile(const TreeItem& item)
{
    const int flags
        = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | (item.isFollowed ? 0 : O_NOFOLLOW);
    _file
        = FileDescriptor(retryOnInterrupt([&] { return ::openat(item.folder, item.name, flags); }));
    if (!_file && errno == ELOOP && !item.isFollowed) {
        _isUnreadable = true;
        _problem = "was replaced by a link while its folder was read";
    } else if (!_file || ::fstat(_file.number(), &_status) != 0) {
        _fail(errno);
    } else if (!S_ISREG(_status.st_mode)) {
        _isUnreadable = true;
        _problem = "was replaced while its folder was read";
    }
}

std::size_t SourceFile::read(std::span<std::byte> buffer)
{
    const auto wanted
        = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), remaining()));
    const std::ptrdiff_t count = FileBytes::readFully(_file.number(), buffer.first(wanted));
    if (count < 0) {
        _fail(errno);
        return 0;
    }
    _offset += static_cast<std::uint64_t>(count);
    if (static_cast<std::size_t>(count) < wanted)
        _problem = "shrank while it was read";
    return static_cast<std::size_t>(count);
}

bool SourceFile::looksIncompressible() const
{
    // Spread over the whole file, because many begin with a header of another kind, and many of
    // them, because what they miss is stored: a twentieth that compresses, in runs that are longer
    // than a sample and lie anywhere, escapes 1 time in 25, a tenth of the file 1 time in 800.
    constexpr std::size_t sampleCount = 64;
    constexpr std::size_t sampleSize = std::size_t{48} << 10; // more than a match can reach back
    if (remaining() < sampleCount * sampleSize)
        return false;
    std::vector<std::byte> buffer(sampleSize);
    const std::uint64_t stride = (remaining() - sampleSize) / (sampleCount - 1);
    for (std::size_t sample = 0; sample < sampleCount; ++sample) {
        const std::ptrdiff_t count
            = FileBytes::readFullyAt(_file.number(), _offset + sample * stride, buffer);
        if (count != static_cast<std::ptrdiff_t>(sampleSize) || !::looksIncompressible(buffer))
            return false;
    }
    return true;
}

void SourceFile::finish()
{
    if (!_problem.empty())
        return;
    FileStatus now{};
    if (::fstat(_file.number(), &now) != 0)
        _fail(errno);
    else if (now.st_size > _status.st_size)
        _problem = "grew while it was read; stored up to its earlier size";
    else if (hasChanged(_status, now))
        _problem = "changed while it was read";
    // Files of the system's own making (/proc) give no size, but content.
    else if (std::byte more{}; size() == 0 && FileBytes::readFully(_file.number(), {&more, 1}) > 0)
        _problem = "does not tell its size; stored empty";
}

void SourceFile::_fail(int error)
{
    _isUnreadable = true;
    _problem = errorText(error);
}

std::optional<std::string> readLink(const TreeItem& item, const FileStatus& status)
{
    std::string target(static_cast<std::size_t>(status.st_size) + 1, '\0');
    for (;;) {
        const ssize_t size = ::readlinkat(item.folder, item.name, target.data(), target.size());
        if (size < 0)
            return std::nullopt;
        if (static_cast<std::size_t>(size) < target.size()) {
            target.resize(static_cast<std::size_t>(size));
            return target;
        }
        target.resize(2 * target.size());
    }
}
