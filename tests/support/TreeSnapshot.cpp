#include "tests/support/TreeSnapshot.h"

#include "system/FileDescriptor.h"
#include "tests/support/Files.h"

#include <cstdlib>
#include <functional>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace support
{

namespace
{

// Of an unreadable file that of an empty one. A block at a time: it may be larger than memory.
std::string hashOfFile(const std::filesystem::path& file)
{
    const FileDescriptor input(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    std::string block(1 << 20, '\0');
    std::size_t hash = 0;
    for (ssize_t count = 0; (count = ::read(input.number(), block.data(), block.size())) > 0;)
        hash = hash * 31
            + std::hash<std::string_view>{}({block.data(), static_cast<std::size_t>(count)});
    return std::to_string(hash);
}

void addTo(TreeSnapshot& tree, const FileDescriptor& folder, const std::string& pathOfFolder)
{
    if (!folder)
        return; // unreadable
    const auto place = std::filesystem::path("/proc/self/fd") / std::to_string(folder.number());
    for (const std::string& name : namesIn(place)) {
        struct stat status = {};
        ::lstat((place / name).c_str(), &status);
        TreeEntry entry = {.kind = "?p??d???f?l?????"[status.st_mode >> 12 & 15],
            .mode = status.st_mode & 07777,
            .time = status.st_mtim.tv_sec};
        if (entry.kind == 'f') {
            entry.content = std::to_string(status.st_size) + " bytes " + hashOfFile(place / name);
        } else if (entry.kind == 'l') {
            entry.content = std::filesystem::read_symlink(place / name);
        } else if (entry.kind == 'd') {
            constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
            const FileDescriptor inside(::openat(folder.number(), name.c_str(), flags));
            addTo(tree, inside, pathOfFolder + name + "/");
        }
        tree[pathOfFolder + name] = std::move(entry);
    }
}

std::string textOf(const TreeEntry& entry, mode_t modeMask)
{
    std::ostringstream text;
    text << entry.kind << " (" << entry.content << ")";
    if (entry.kind != 'l') // its permissions mean nothing, and few programs set its time
        text << std::oct << " 0" << (entry.mode & modeMask) << std::dec << " " << entry.time;
    return text.str();
}

} // namespace

TreeSnapshot snapshot(const std::filesystem::path& folder)
{
    TreeSnapshot tree;
    addTo(tree, FileDescriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), "");
    return tree;
}

std::vector<std::string> differences(
    const TreeSnapshot& expected, const TreeSnapshot& actual, const Tolerance& tolerance)
{
    TreeSnapshot rest = actual;
    std::vector<std::string> lines;
    for (const auto& [path, entry] : expected) {
        auto found = rest.extract(path);
        if (!found) {
            lines.push_back(path + " is missing");
            continue;
        }
        std::int64_t& time = found.mapped().time;
        if (tolerance.seconds < 0 || std::abs(time - entry.time) <= tolerance.seconds)
            time = entry.time;
        const std::string is = textOf(found.mapped(), tolerance.modeMask);
        const std::string shouldBe = textOf(entry, tolerance.modeMask);
        if (is != shouldBe)
            lines.push_back(path + " is " + is + ", not " + shouldBe);
    }
    for (const auto& [path, entry] : rest)
        lines.push_back(path + " is extra");
    return lines;
}

} // namespace support
