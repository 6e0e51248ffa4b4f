#include "tools/common/OutputFile.h"

#include "system/Utf8.h"
#include "tools/common/Failure.h"
#include "tools/common/Interrupt.h"
#include "tools/common/Messages.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <unistd.h>

namespace
{

constexpr std::size_t longestName = 255; // bytes; what all common file systems take
constexpr std::size_t suffixSize = 6;

// How much is appended before the disk is told to begin with it, so that little is left to wait for
// when the archive has to be safe.
constexpr std::uint64_t writebackSize = std::uint64_t{8} << 20;

struct SplitPath {
    std::string folder; // with the slash; empty for the current folder
    std::string name;
};

SplitPath split(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return {"", path};
    return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

std::string randomSuffix()
{
    static constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::array<unsigned char, suffixSize> random{};
    if (getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size()))
        throw systemFailure(FailureKind::CannotCreate, "random number");
    std::string suffix;
    for (const unsigned char byte : random)
        suffix += letters[byte % letters.size()];
    return suffix;
}

// What the hidden names for `name` begin with; six random letters follow.
std::string hiddenPrefixFor(const std::string& name)
{
    constexpr std::string_view tail = ".part-";
    const std::size_t room = longestName - 1 - tail.size() - suffixSize;
    return "." + std::string(Utf8::shortened(name, room)) + std::string(tail);
}

// Removes what runs that were killed have left of the same archive: nobody holds a lock on it.
void removeAbandoned(const SplitPath& path)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(
        opendir(path.folder.empty() ? "." : path.folder.c_str()), closedir);
    if (!folder)
        return;
    const std::string prefix = hiddenPrefixFor(path.name);
    // Read by this thread alone.
    while (const dirent* entry = readdir(folder.get())) { // NOLINT(concurrency-mt-unsafe)
        const std::string_view name(entry->d_name);
        if (!name.starts_with(prefix) || name.size() != prefix.size() + suffixSize)
            continue;
        const int flags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
        const FileDescriptor file(openat(dirfd(folder.get()), entry->d_name, flags));
        if (file && flock(file.number(), LOCK_EX | LOCK_NB) == 0)
            unlinkat(dirfd(folder.get()), entry->d_name, 0);
    }
}

[[noreturn]] void cannotCreate(const std::string& path)
{
    throw systemFailure(FailureKind::CannotCreate, "cannot create " + Messages::readableName(path));
}

[[noreturn]] void cannotWrite(const std::string& path)
{
    throw systemFailure(FailureKind::Write, "cannot write " + Messages::readableName(path));
}

// Waits for the lock; an interrupt ends the wait.
void lock(int descriptor, const std::string& path)
{
    while (flock(descriptor, LOCK_EX) != 0) {
        if (errno != EINTR)
            cannotCreate(path);
        Interrupt::check();
    }
}

// Some file systems can't do this for folders (EINVAL); what they promise without it has to do.
bool sync(int descriptor)
{
    while (fsync(descriptor) != 0)
        if (errno != EINTR)
            return errno == EINVAL;
    return true;
}

} // namespace

OutputFile::OutputFile(
    FileDescriptor file, const struct stat& status, std::string path, std::string hiddenPath)
    : _file(std::move(file))
    , _path(std::move(path))
    , _hiddenPath(std::move(hiddenPath))
    , _status(status)
{
}

OutputFile::OutputFile(OutputFile&& other) noexcept
    : _file(std::move(other._file))
    , _path(std::move(other._path))
    , _hiddenPath(std::exchange(other._hiddenPath, {}))
    , _status(other._status)
    , _position(other._position)
    , _writebackEnd(other._writebackEnd)
{
}

OutputFile::~OutputFile()
{
    discard();
}

OutputFile OutputFile::createBeside(const std::string& path)
{
    const SplitPath parts = split(path);
    if (parts.name.empty()) {
        errno = EISDIR;
        cannotCreate(path);
    }
    removeAbandoned(parts);
    for (;;) {
        const std::string hidden = parts.folder + hiddenPrefixFor(parts.name) + randomSuffix();
        FileDescriptor file(open(hidden.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (!file && (errno == EEXIST || errno == EINTR))
            continue;
        if (!file)
            cannotCreate(path);
        // Best effort: without locks nothing abandoned can be told from what is in use.
        flock(file.number(), LOCK_EX | LOCK_NB);
        struct stat status {
        };
        const bool isKnown = fstat(file.number(), &status) == 0;
        if (isKnown && status.st_nlink > 0)
            return {std::move(file), status, path, hidden};
        if (isKnown)
            continue; // another run took it for abandoned before it was locked
        const int error = errno;
        unlink(hidden.c_str());
        errno = error;
        cannotCreate(path);
    }
}

std::optional<OutputFile> OutputFile::openExisting(const std::string& path)
{
    for (;;) {
        FileDescriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
        if (!file && errno == ENOENT) {
            struct stat link {
            };
            if (lstat(path.c_str(), &link) != 0)
                return std::nullopt;
            throw Failure(FailureKind::CannotCreate,
                Messages::readableName(path) + " is a link that leads nowhere");
        }
        struct stat status {
        };
        if (!file || fstat(file.number(), &status) != 0)
            cannotCreate(path);
        OutputFile output(std::move(file), status, path, "");
        if (!S_ISREG(output._status.st_mode))
            throw Failure(FailureKind::CannotCreate,
                Messages::readableName(path) + " exists and is not a file");
        lock(output.descriptor(), path);
        // Another process may have changed or replaced the file while this one waited.
        struct stat now {
        };
        const bool isThere = stat(path.c_str(), &now) == 0 && output.isSameFile(now);
        if (isThere && fstat(output.descriptor(), &output._status) == 0)
            return output;
    }
}

void OutputFile::append(std::span<const std::byte> bytes)
{
    writeAt(_position, bytes);
    _position += bytes.size();
    if (_position - _writebackEnd >= writebackSize) {
        // A hint only: whatever fails here fails again where it is waited for.
        sync_file_range(_file.number(), static_cast<off_t>(_writebackEnd),
            static_cast<off_t>(_position - _writebackEnd), SYNC_FILE_RANGE_WRITE);
        _writebackEnd = _position;
    }
}

void OutputFile::writeAt(std::uint64_t offset, std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t written
            = pwrite(_file.number(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            cannotWrite(_path);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
}

void OutputFile::truncateHere()
{
    while (ftruncate(_file.number(), static_cast<off_t>(_position)) != 0)
        if (errno != EINTR)
            cannotWrite(_path);
}

bool OutputFile::isSameFile(const struct stat& status) const
{
    return status.st_dev == _status.st_dev && status.st_ino == _status.st_ino;
}

// Closing another descriptor of the file tells the same, and leaves this one to put things right
// with.
void OutputFile::flush()
{
    FileDescriptor another(fcntl(_file.number(), F_DUPFD_CLOEXEC, 0));
    if (!another || !another.close())
        cannotWrite(_path);
}

void OutputFile::commit(Existing existing)
{
    flush();
    rename(existing);
}

bool OutputFile::commitDurably(Existing existing)
{
    const std::string folderPath = split(_path).folder;
    const FileDescriptor folder(
        open(folderPath.empty() ? "." : folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder || !sync(_file.number()))
        cannotWrite(_path);
    flush();
    rename(existing);
    if (sync(folder.number()))
        return true;
    Messages::warn(_path, "may be lost in a power cut: " + errorText(errno));
    return false;
}

void OutputFile::rename(Existing existing)
{
    const unsigned flags = existing == Existing::Keep ? RENAME_NOREPLACE : 0;
    const char* from = _hiddenPath.c_str();
    const char* to = _path.c_str();
    bool isDone = renameat2(AT_FDCWD, from, AT_FDCWD, to, flags) == 0;
    // File systems without the flag: a second link is as good, and it too never replaces.
    if (!isDone && flags != 0 && errno == EINVAL)
        isDone = link(from, to) == 0 && unlink(from) == 0;
    if (!isDone && errno == EEXIST)
        throw systemFailure(
            FailureKind::NameTaken, "cannot create " + Messages::readableName(_path));
    if (!isDone)
        cannotWrite(_path);
    _hiddenPath.clear();
}

void OutputFile::discard()
{
    if (!_hiddenPath.empty())
        unlink(_hiddenPath.c_str());
    _hiddenPath.clear();
}
