#include "system/PartFile.h"

#include "system/LastError.h"
#include "system/PathString.h"
#include "system/Utf8.h"

#include <array>
#include <memory>

#include <dirent.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>

namespace
{

using FileStatus = struct stat; // a name of its own, beside the function

constexpr std::size_t suffixSize = 6;
constexpr std::string_view hiddenTail = ".part-";

std::string randomSuffix()
{
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::array<unsigned char, suffixSize> random{};
    (void)retryOnInterrupt([&] { return ::getrandom(random.data(), random.size(), 0); });
    std::string suffix;
    for (const unsigned char byte : random)
        suffix += letters[byte % letters.size()];
    return suffix;
}

// Some file systems can't do this for folders (EINVAL); what they promise without it has to do.
std::error_code sync(int descriptor)
{
    const auto failure = errorOf(retryOnInterrupt([&] { return ::fsync(descriptor); }));
    return failure == std::errc::invalid_argument ? std::error_code() : failure;
}

} // namespace

PartFile::PartFile(std::string path, mode_t mode, int folder)
    : _folder(folder)
    , _path(std::move(path))
{
    _removeAbandoned();
    _create(mode);
}

PartFile::PartFile(PartFile&& other) noexcept
    : _folder(other._folder)
    , _path(std::move(other._path))
    , _hiddenPath(std::exchange(other._hiddenPath, {}))
    , _file(std::move(other._file))
    , _failure(other._failure)
{
}

PartFile::~PartFile()
{
    if (!_hiddenPath.empty())
        ::unlinkat(_folder, _hiddenPath.c_str(), 0);
}

std::string PartFile::_folderPath() const
{
    const std::string folder = PathString::stringByDeletingLastPathComponent(_path);
    return folder.empty() ? "." : folder;
}

std::string PartFile::_hiddenPrefix() const
{
    constexpr std::size_t room = FileName::longestInBytes - 1 - hiddenTail.size() - suffixSize;
    const std::string name = PathString::lastPathComponent(_path);
    return "." + std::string(Utf8::shortened(name, room)) + std::string(hiddenTail);
}

void PartFile::_create(mode_t mode)
{
    if (_path.empty() || _path.ends_with('/')) {
        _failure = std::make_error_code(std::errc::is_a_directory);
        return;
    }
    while (true) {
        _hiddenPath = PathString::stringByAppendingPathComponent(
            PathString::stringByDeletingLastPathComponent(_path), _hiddenPrefix() + randomSuffix());
        constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
        _file = FileDescriptor(
            retryOnInterrupt([&] { return ::openat(_folder, _hiddenPath.c_str(), flags, mode); }));
        if (!_file && errno == EEXIST)
            continue;
        if (!_file) {
            _failure = lastError();
            _hiddenPath.clear();
            return;
        }
        // Best effort: without locks nothing abandoned can be told from what is in use.
        ::flock(_file.number(), LOCK_EX | LOCK_NB);
        FileStatus status{};
        if (::fstat(_file.number(), &status) != 0) {
            _failure = lastError();
            _file.close();
            return;
        }
        if (status.st_nlink > 0)
            return;
        // Another process took it for abandoned before it was locked.
    }
}

void PartFile::_removeAbandoned() const
{
    const FileDescriptor opened(
        ::openat(_folder, _folderPath().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(
        opened ? ::fdopendir(::fcntl(opened.number(), F_DUPFD_CLOEXEC, 0)) : nullptr, ::closedir);
    if (!folder)
        return;
    const std::string prefix = _hiddenPrefix();
    // Read by this thread alone.
    while (const dirent* entry = ::readdir(folder.get())) { // NOLINT(concurrency-mt-unsafe)
        const std::string_view name(entry->d_name);
        if (!name.starts_with(prefix) || name.size() != prefix.size() + suffixSize)
            continue;
        constexpr int flags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
        const FileDescriptor file(::openat(opened.number(), entry->d_name, flags));
        if (file && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0)
            ::unlinkat(opened.number(), entry->d_name, 0);
    }
}

// Closing another descriptor of the file tells what closing this one would.
std::error_code PartFile::commit(Existing existing)
{
    FileDescriptor another(::fcntl(_file.number(), F_DUPFD_CLOEXEC, 0));
    if (!another || !another.close())
        return lastError();
    if (const auto failure = FileName::rename(_folder, _hiddenPath, _path, existing))
        return failure;
    _hiddenPath.clear();
    return {};
}

std::error_code PartFile::commitDurably(Existing existing)
{
    if (const auto failure = sync(_file.number()))
        return failure;
    if (const auto failure = commit(existing))
        return failure;
    // The file has its name already, and "failed" would be the wrong word for it.
    const FileDescriptor folder(
        ::openat(_folder, _folderPath().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        (void)sync(folder.number());
    return {};
}
