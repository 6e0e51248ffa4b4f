#include "tools/common/OutputFile.h"

#include "system/FileBytes.h"
#include "system/LastError.h"
#include "tools/common/Failure.h"
#include "tools/common/Interrupt.h"
#include "tools/common/Messages.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{

// How much is appended before the disk is told to begin with it, so that little is left to wait for
// when the archive has to be safe.
constexpr std::uint64_t writebackSize = std::uint64_t{8} << 20;

constexpr mode_t newFilesMode = 0666; // less the umask

[[noreturn]] void cannotCreate(const std::string& path, const std::error_code& reason = lastError())
{
    throw systemFailure(
        FailureKind::cannotCreate, "cannot create " + Messages::readableName(path), reason);
}

[[noreturn]] void cannotWrite(const std::string& path, const std::error_code& reason = lastError())
{
    throw systemFailure(FailureKind::write, "cannot write " + Messages::readableName(path), reason);
}

// None if there is nothing of that name.
FileDescriptor openInPlace(const std::string& path)
{
    constexpr int flags = O_RDWR | O_CLOEXEC | O_NONBLOCK;
    FileDescriptor file(retryOnInterrupt([&] { return ::open(path.c_str(), flags); }));
    if (!file && errno != ENOENT)
        cannotCreate(path);
    FileStatus status{};
    if (!file && ::lstat(path.c_str(), &status) == 0)
        throw Failure(FailureKind::cannotCreate,
            Messages::readableName(path) + " is a link that leads nowhere");
    if (file && ::fstat(file.number(), &status) != 0)
        cannotCreate(path);
    if (file && !S_ISREG(status.st_mode))
        throw Failure(
            FailureKind::cannotCreate, Messages::readableName(path) + " exists and is not a file");
    return file;
}

// Waits for the lock; an interrupt ends the wait, also one that comes right before it: so it is
// asked for again and again. Where nothing can be locked, it goes on without.
void lock(int descriptor, const std::string& path)
{
    while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno == ENOLCK || errno == EOPNOTSUPP || errno == ENOSYS || errno == EINVAL)
            return;
        if (errno != EWOULDBLOCK && errno != EINTR)
            cannotCreate(path);
        Interrupt::check();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

} // namespace

OutputFile OutputFile::createBeside(const std::string& path)
{
    OutputFile output(path);
    const PartFile& part = output._part.emplace(path, newFilesMode);
    if (!part)
        cannotCreate(path, part.failure());
    if (::fstat(part.descriptor(), &output._status) != 0)
        cannotCreate(path);
    return output;
}

std::optional<OutputFile> OutputFile::openExisting(const std::string& path)
{
    OutputFile output(path);
    for (;;) {
        output._file = openInPlace(path);
        if (!output._file)
            return std::nullopt;
        lock(output.descriptor(), path);
        // Another process may have changed or replaced the file while this one waited.
        FileStatus now{};
        const bool isKnown = ::fstat(output.descriptor(), &output._status) == 0;
        if (isKnown && ::stat(path.c_str(), &now) == 0 && isSameFile(now, output._status)) {
            output._end = static_cast<std::uint64_t>(output._status.st_size);
            return output;
        }
    }
}

void OutputFile::append(std::span<const std::byte> bytes)
{
    writeAt(_position, bytes);
    _position += bytes.size();
    if (_position - _writebackEnd >= writebackSize) {
        // A hint only: whatever fails here fails again where it is waited for.
        ::sync_file_range(descriptor(), static_cast<off_t>(_writebackEnd),
            static_cast<off_t>(_position - _writebackEnd), SYNC_FILE_RANGE_WRITE);
        _writebackEnd = _position;
    }
}

void OutputFile::writeAt(std::uint64_t offset, std::span<const std::byte> bytes)
{
    _end = std::max(_end, offset + bytes.size()); // part of a write that fails may be done
    if (!FileBytes::writeAllAt(descriptor(), offset, bytes))
        cannotWrite(_path);
}

void OutputFile::readAt(std::uint64_t offset, std::span<std::byte> bytes) const
{
    if (FileBytes::readFullyAt(descriptor(), offset, bytes) != std::ssize(bytes))
        throw systemFailure(FailureKind::write, "cannot read the archive back");
}

void OutputFile::truncateHere()
{
    if (_position == _end)
        return;
    const auto size = static_cast<off_t>(_position);
    if (retryOnInterrupt([&] { return ::ftruncate(descriptor(), size); }) != 0)
        cannotWrite(_path);
}

void OutputFile::flush()
{
    if (!FileBytes::flush(descriptor()))
        cannotWrite(_path);
}

void OutputFile::commit(Existing existing)
{
    _checkCommit(_part->commit(existing));
}

bool OutputFile::commitDurably(Existing existing)
{
    const std::string about = "warning: " + Messages::readableName(_path);
    _checkCommit(_part->commitDurably(existing));
    // From here on the archive is there: nothing may fail any more, be it for lack of memory.
    const std::error_code failure = _part->nameFailure();
    if (failure)
        Messages::tell(about, "may be lost in a power cut: ", std::strerror(failure.value()));
    return !failure;
}

void OutputFile::_checkCommit(const std::error_code& failure) const
{
    if (failure == std::errc::file_exists)
        throw systemFailure(
            FailureKind::nameTaken, "cannot create " + Messages::readableName(_path), failure);
    if (failure)
        cannotWrite(_path, failure);
}
