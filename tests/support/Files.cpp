#include "tests/support/Files.h"

#include "system/FileDescriptor.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>

namespace support
{

Lines linesOf(const std::string& text)
{
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

int checked(int result, const std::string& what)
{
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), what);
    return result;
}

void writeFile(const std::filesystem::path& file, std::string_view content)
{
    if (file.has_parent_path())
        std::filesystem::create_directories(file.parent_path());
    std::ofstream output(file);
    output << content << std::flush;
    checked(output ? 0 : -1, file);
}

std::string readFile(const std::filesystem::path& file)
{
    const std::ifstream input(file);
    checked(input ? 0 : -1, file);
    std::ostringstream content;
    content << input.rdbuf();
    return std::move(content).str();
}

void setTime(const std::filesystem::path& file, std::int64_t secondsSince1970, long nanoseconds)
{
    const timespec time = {secondsSince1970, nanoseconds}, times[] = {time, time};
    checked(::utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW), file);
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
    const std::string words[] = {"archive", "folder", "of", "the", "gesture", "\n", "block", "one"};
    std::mt19937_64 generator(seed);
    std::string text;
    for (std::uint64_t number; text.size() < sizeInBytes;) {
        number = generator();
        text += words[number % 8] + static_cast<char>('a' + number / 8 % 26) + ' ';
    }
    return text.substr(0, sizeInBytes);
}

Names namesIn(const std::filesystem::path& folder)
{
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
}

} // namespace support
