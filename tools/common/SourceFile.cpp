#include "tools/common/SourceFile.h"

#include "system/FileBytes.h"
#include "tools/common/Compressor.h"
#include "tools/common/Failure.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace
{

// Samples spread over the whole file, because many begin with a header of another kind, and many of
// them, because what they miss is stored: a twentieth that compresses, in runs that are longer than
// a sample and lie anywhere, escapes 1 time in 25, a tenth of the file 1 time in 800.
constexpr std::size_t sampleCount = 64;
constexpr std::size_t sampleSize = std::size_t{48} << 10; // more than a match can reach back

} // namespace

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
    const std::ptrdiff_t count = _fill(buffer.first(wanted));
    if (count < 0) {
        _fail(errno);
        return 0;
    }
    _offset += static_cast<std::uint64_t>(count);
    if (static_cast<std::size_t>(count) < wanted)
        _problem = "shrank while it was read";
    return static_cast<std::size_t>(count);
}

// As far as the file goes, or -1.
std::ptrdiff_t SourceFile::_fill(std::span<std::byte> buffer)
{
    if (_samples.size() == 0)
        return FileBytes::readFully(_file.number(), buffer);
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const std::uint64_t at = _offset + filled;
        const std::span<std::byte> rest = buffer.subspan(filled);
        const std::uint64_t inSample = at % _stride;
        const std::uint64_t sampledAt = at / _stride * sampleSize + inSample;
        if (inSample < sampleSize && sampledAt < _samples.size()) {
            const auto size = std::min<std::size_t>(
                {rest.size(), sampleSize - inSample, _samples.size() - sampledAt});
            std::copy_n(_samples.begin() + sampledAt, size, rest.data());
            filled += size;
            continue;
        }
        const bool isBeforeSample = (at / _stride + 1) * sampleSize < _samples.size();
        const auto size
            = isBeforeSample ? std::min<std::size_t>(rest.size(), _stride - inSample) : rest.size();
        const std::ptrdiff_t count = FileBytes::readFullyAt(_file.number(), at, rest.first(size));
        if (count < 0)
            return -1;
        filled += static_cast<std::size_t>(count);
        if (static_cast<std::size_t>(count) < size)
            break;
    }
    return static_cast<std::ptrdiff_t>(filled);
}

bool SourceFile::looksIncompressible()
{
    const std::uint64_t most = std::min<std::uint64_t>(size(), sampleCount * sampleSize);
    const std::uint64_t count = most / sampleSize;
    if (count == 0)
        return false;
    // Of a smaller file all is looked at.
    _stride = size() == most ? sampleSize : (size() - sampleSize) / (count - 1);
    (void)_samples.room(most);
    for (std::uint64_t sample = 0; sample < count; ++sample) {
        const bool isLast = sample + 1 == count;
        const std::span<std::byte> bytes
            = _samples.room(isLast ? most - _samples.size() : sampleSize);
        if (FileBytes::readFullyAt(_file.number(), sample * _stride, bytes) != std::ssize(bytes))
            return false;
        _samples.keep(bytes.size());
        // One that looks otherwise among such that do not may be so by chance.
        if (!::looksIncompressible(bytes) && (sample == 0 || compressesQuickly(bytes)))
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
