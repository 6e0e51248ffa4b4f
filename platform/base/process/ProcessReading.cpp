#include "platform/base/process/ProcessReading.h"

#include "system/FileDescriptor.h"
#include "system/FileStatus.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{

std::string folderOf(pid_t process)
{
    return "/proc/" + std::to_string(process);
}

// Such files are short, and tell no size.
std::string contentOf(const std::string& path)
{
    std::array<char, 4096> buffer{};
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    const ssize_t count = file ? ::read(file.number(), buffer.data(), buffer.size()) : 0;
    return {buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

template <class Number> std::optional<Number> numberAt(std::string_view text)
{
    Number number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc() ? std::optional(number) : std::nullopt;
}

std::vector<pid_t> childrenOf(pid_t process)
{
    const std::string path = folderOf(process) + "/task/" + std::to_string(process) + "/children";
    const std::string list = contentOf(path);
    std::vector<pid_t> children;
    std::string_view rest(list);
    while (const auto child = numberAt<pid_t>(rest)) {
        children.push_back(*child);
        rest.remove_prefix(std::min(rest.find(' '), rest.size() - 1) + 1);
    }
    return children;
}

// The descriptor's link has the permissions that the file was opened for.
bool isOpenForReadingAlone(const std::string& descriptor)
{
    FileStatus link{};
    FileStatus file{};
    return ::lstat(descriptor.c_str(), &link) == 0
        && (link.st_mode & (S_IRUSR | S_IWUSR)) == S_IRUSR && ::stat(descriptor.c_str(), &file) == 0
        && S_ISREG(file.st_mode);
}

} // namespace

std::optional<std::uint64_t> ProcessReading::bytesRead(pid_t process)
{
    constexpr std::string_view label = "rchar: ";
    const std::string counts = contentOf(folderOf(process) + "/io");
    const auto at = counts.find(label);
    if (at == std::string::npos)
        return std::nullopt;
    const std::string_view number(counts.data() + at + label.size());
    auto most = numberAt<std::uint64_t>(number);
    for (const pid_t child : childrenOf(process))
        most = std::max(most, bytesRead(child));
    return most;
}

std::optional<fs::path> ProcessReading::openFile(pid_t process)
{
    for (const pid_t child : childrenOf(process))
        if (auto file = openFile(child))
            return file;
    std::error_code ended; // the process, while its files are listed
    std::error_code closed; // one of them
    std::optional<fs::path> file;
    int highest = -1;
    for (fs::directory_iterator entry(folderOf(process) + "/fd", ended), end;
         !ended && entry != end; entry.increment(ended)) {
        const int number = numberAt<int>(entry->path().filename().native()).value_or(-1);
        if (number <= highest || !isOpenForReadingAlone(entry->path()))
            continue;
        fs::path target = fs::read_symlink(entry->path(), closed);
        if (closed)
            continue;
        file = std::move(target);
        highest = number;
    }
    return file;
}
