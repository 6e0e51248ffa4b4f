#include "tests/support/Files.h"

#include "system/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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
    const FileDescriptor output(
        checked(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644), file));
    while (!content.empty()) {
        const ssize_t written = write(output.number(), content.data(), content.size());
        content.remove_prefix(static_cast<std::size_t>(checked(static_cast<int>(written), file)));
    }
}

std::string readFile(const std::filesystem::path& file)
{
    const FileDescriptor input(checked(open(file.c_str(), O_RDONLY | O_CLOEXEC), file));
    return readFile(input.number());
}

std::string readFile(int descriptor)
{
    struct stat status = {};
    checked(fstat(descriptor, &status), "fstat");
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = pread(
            descriptor, content.data() + done, content.size() - done, static_cast<off_t>(done));
        if (count <= 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    content.resize(done);
    return content;
}

void setTime(const std::filesystem::path& file, std::int64_t secondsSince1970, long nanoseconds)
{
    const timespec time = {secondsSince1970, nanoseconds};
    const std::array<timespec, 2> times = {time, time};
    checked(utimensat(AT_FDCWD, file.c_str(), times.data(), AT_SYMLINK_NOFOLLOW), file);
}

void makeFifo(const std::filesystem::path& file)
{
    checked(mkfifo(file.c_str(), 0644), file);
}

void makeNestedFolders(
    const std::filesystem::path& folder, const std::string& name, unsigned levels)
{
    std::filesystem::create_directory(folder);
    int inner = checked(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), folder);
    for (; levels > 0; --levels) {
        const FileDescriptor outer(inner);
        checked(mkdirat(outer.number(), name.c_str(), 0755), name);
        inner = checked(
            openat(outer.number(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), name);
    }
    const FileDescriptor last(inner);
    const FileDescriptor leaf(
        checked(openat(last.number(), "leaf", O_CREAT | O_WRONLY | O_CLOEXEC, 0644), name));
}

std::string randomBytes(std::size_t sizeInBytes, unsigned seed)
{
    std::mt19937_64 generator(seed);
    std::string bytes(sizeInBytes, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(generator()); });
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

std::vector<std::string> namesIn(int folder)
{
    std::vector<std::string> names;
    const int copy = checked(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC), ".");
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(fdopendir(copy), closedir);
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream is this function's own.
    while (const dirent* entry = readdir(listing.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> namesIn(const std::filesystem::path& folder)
{
    const FileDescriptor opened(
        checked(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), folder));
    return namesIn(opened.number());
}

} // namespace support
