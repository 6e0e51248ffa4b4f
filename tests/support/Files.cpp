#include "tests/support/Files.h"

#include "system/FileBytes.h"
#include "system/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <limits>
#include <random>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace support
{

namespace
{

int checked(int result, const std::filesystem::path& path)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), path.string());
    return result;
}

} // namespace

void writeFile(const std::filesystem::path& file, std::string_view content)
{
    if (file.has_parent_path())
        std::filesystem::create_directories(file.parent_path());
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
    const FileDescriptor output(checked(::open(file.c_str(), flags, 0644), file));
    checked(FileBytes::writeAll(output.number(), content) ? 0 : -1, file);
}

std::string readFile(const std::filesystem::path& file)
{
    std::optional<std::string> content
        = FileBytes::readWhole(file, std::numeric_limits<std::size_t>::max());
    checked(content ? 0 : -1, file);
    return std::move(*content);
}

void setTime(const std::filesystem::path& file, std::int64_t secondsSince1970, long nanoseconds)
{
    const timespec time = {secondsSince1970, nanoseconds};
    const std::array<timespec, 2> times = {time, time};
    checked(::utimensat(AT_FDCWD, file.c_str(), times.data(), AT_SYMLINK_NOFOLLOW), file);
}

void makeFifo(const std::filesystem::path& file)
{
    checked(::mkfifo(file.c_str(), 0644), file);
}

void makeNestedFolders(
    const std::filesystem::path& folder, const std::string& name, unsigned levels)
{
    std::filesystem::create_directories(folder);
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    FileDescriptor inner(checked(::open(folder.c_str(), flags), folder));
    for (; levels > 0; --levels) {
        checked(::mkdirat(inner.number(), name.c_str(), 0755), name);
        inner = FileDescriptor(checked(::openat(inner.number(), name.c_str(), flags), name));
    }
    checked(::mknodat(inner.number(), "leaf", S_IFREG | 0644, 0), name);
}

std::string randomBytes(std::size_t sizeInBytes, unsigned seed)
{
    std::mt19937_64 generator(seed);
    std::string bytes(sizeInBytes, '\0');
    std::ranges::generate(bytes, [&] { return static_cast<char>(generator()); });
    return bytes;
}

std::string someText(std::size_t sizeInBytes, unsigned seed)
{
    static constexpr std::array<std::string_view, 8> words
        = {"archive", "folder", "of", "the", "gesture", "\n", "block", "one"};
    std::mt19937_64 generator(seed);
    std::string text;
    text.reserve(sizeInBytes + 16);
    while (text.size() < sizeInBytes) {
        const std::uint64_t number = generator();
        text += words.at(number % words.size());
        text += static_cast<char>('a' + number / words.size() % 26);
        text += ' ';
    }
    text.resize(sizeInBytes);
    return text;
}

std::vector<std::string> namesIn(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
}

} // namespace support
