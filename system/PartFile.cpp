#include "system/PartFile.h"

#include "system/FileBytes.h"
#include "system/FileStatus.h"
#include "system/LastError.h"
#include "system/PathString.h"
#include "system/Utf8.h"

#include <algorithm>
#include <array>
#include <memory>

#include <dirent.h>
#include <sys/file.h>
#include <sys/random.h>

namespace
{

constexpr std::size_t suffixSize = 6;
constexpr std::string_view hiddenTail = ".part-";

std::string randomSuffix()
{
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::array<unsigned char, suffixSize> random{};
    (void)retryOnInterrupt([&] { return ::getrandom(random.data(), random.size(), 0); });
    std::string suffix(suffixSize, '\0');
    std::ranges::transform(
        random, suffix.begin(), [&](unsigned char byte) { return letters[byte % letters.size()]; });
    return suffix;
}

// Some file systems can't do this for folders (EINVAL); what they promise without it has to do.
std::error_code sync(int descriptor)
{
    const auto failure = errorOf(retryOnInterrupt([&] { return ::fsync(descriptor); }));
    return failure == std::errc::invalid_argument ? std::error_code() : failure;
}

} // namespace

PartFile::PartFile(std::string path, mode_t mode, int folder, Place place)
    : _folder(folder)
    , _path(std::move(path))
{
    if (place == Place::shared)
        _removeAbandoned();
    _create(mode, place);
}

PartFile::PartFile(PartFile&& other) noexcept
    : _folder(other._folder)
    , _path(std::move(other._path))
    , _hiddenPath(std::exchange(other._hiddenPath, {}))
    , _file(std::move(other._file))
    , _failure(other._failure)
    , _nameFailure(other._nameFailure)
{
}

PartFile::~PartFile()
{
    if (!_hiddenPath.empty())
        ::unlinkat(_folder, _hiddenPath.c_str(), 0);
}

FileDescriptor PartFile::_openFolder() const
{
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const std::string path = PathString::folderOf(_path);
    return FileDescriptor(retryOnInterrupt([&] { return ::openat(_folder, path.c_str(), flags); }));
}

std::string PartFile::_hiddenPrefix() const
{
    constexpr std::size_t room = FileName::longestInBytes - 1 - hiddenTail.size() - suffixSize;
    const std::string_view path(_path);
    const std::size_t nameAt = path.rfind('/') + 1; // npos + 1 is 0
    std::string prefix;
    prefix.reserve(path.size() + 1 + hiddenTail.size() + suffixSize);
    prefix += path.substr(0, nameAt);
    prefix += '.';
    prefix += Utf8::shortened(path.substr(nameAt), room);
    prefix += hiddenTail;
    return prefix;
}

void PartFile::_create(mode_t mode, Place place)
{
    if (_path.empty() || _path.ends_with('/')) {
        _failure = std::make_error_code(std::errc::is_a_directory);
        return;
    }
    _hiddenPath = _hiddenPrefix();
    const std::size_t prefixSize = _hiddenPath.size();
    while (true) {
        _hiddenPath.resize(prefixSize);
        _hiddenPath += randomSuffix();
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
        if (place == Place::own)
            return;
        // Best effort: without locks nothing abandoned can be told from what is in use.
        const auto unlocked
            = errorOf(retryOnInterrupt([&] { return ::flock(_file.number(), LOCK_EX | LOCK_NB); }));
        FileStatus status{};
        if (::fstat(_file.number(), &status) != 0) {
            _failure = lastError();
            _file.close();
            return;
        }
        if (status.st_nlink > 0 && unlocked != std::errc::operation_would_block)
            return;
        // Another process took it for abandoned before it was locked, and removes it.
        ::unlinkat(_folder, _hiddenPath.c_str(), 0);
    }
}

void PartFile::_removeAbandoned() const
{
    FileDescriptor opened = _openFolder();
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(
        opened ? ::fdopendir(opened.number()) : nullptr, ::closedir);
    if (!folder)
        return;
    const int number = opened.release(); // the folder closes it
    const std::string prefix = PathString::lastPathComponent(_hiddenPrefix());
    // Read by this thread alone.
    while (const dirent* entry = ::readdir(folder.get())) { // NOLINT(concurrency-mt-unsafe)
        const std::string_view name(entry->d_name);
        if (!name.starts_with(prefix) || name.size() != prefix.size() + suffixSize)
            continue;
        constexpr int flags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
        const FileDescriptor file(::openat(number, entry->d_name, flags));
        if (file && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0)
            ::unlinkat(number, entry->d_name, 0);
    }
}

std::error_code PartFile::commit(Existing existing)
{
    if (!FileBytes::flush(_file.number()))
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
    const FileDescriptor folder = _openFolder(); // this may throw
    const std::error_code folderFailure = errorOf(folder.number());
    if (const auto failure = commit(existing))
        return failure;
    // The file has its name already, and "failed" would be the wrong word for it.
    _nameFailure = folder ? sync(folder.number()) : folderFailure;
    return {};
}
