#include "tests/support/TreeSnapshot.h"

#include "system/FileDescriptor.h"
#include "tests/support/Files.h"

#include <climits>
#include <cstdlib>
#include <functional>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace support
{

namespace
{

std::uint64_t hash(std::string_view bytes)
{
    return std::hash<std::string_view>{}(bytes);
}

std::uint64_t hashOfFile(int folder, const std::string& name)
{
    const FileDescriptor file(openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    std::string block(1 << 20, '\0');
    std::uint64_t result = 0;
    for (;;) {
        const ssize_t count = read(file.number(), block.data(), block.size());
        if (count <= 0)
            return result;
        result = result * 31 + hash({block.data(), static_cast<std::size_t>(count)});
    }
}

std::string targetOf(int folder, const std::string& name)
{
    std::string target(PATH_MAX, '\0');
    const ssize_t size = readlinkat(folder, name.c_str(), target.data(), target.size());
    target.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return target;
}

char kindOf(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFREG:
        return 'f';
    case S_IFDIR:
        return 'd';
    case S_IFLNK:
        return 'l';
    case S_IFIFO:
        return 'p';
    default:
        return '?';
    }
}

void addTo(TreeSnapshot& tree, int folder, const std::string& pathOfFolder)
{
    for (const std::string& name : namesIn(folder)) {
        struct stat status = {};
        fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
        TreeEntry entry = {.kind = kindOf(status.st_mode),
            .mode = status.st_mode & 07777,
            .time = status.st_mtim.tv_sec,
            .inode = status.st_ino};
        const std::string path = pathOfFolder + name;
        if (entry.kind == 'f') {
            entry.sizeInBytes = static_cast<std::uint64_t>(status.st_size);
            entry.contentHash = hashOfFile(folder, name);
        } else if (entry.kind == 'l') {
            entry.target = targetOf(folder, name);
        } else if (entry.kind == 'd') {
            const FileDescriptor inside(
                openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (inside)
                addTo(tree, inside.number(), path + "/");
        }
        tree[path] = std::move(entry);
    }
}

// What `entry` looks like after a program with these limits has brought it back.
TreeEntry through(const Tolerance& tolerance, TreeEntry entry)
{
    if (tolerance.linksAsFiles && entry.kind == 'l') {
        entry.kind = 'f';
        entry.sizeInBytes = entry.target.size();
        entry.contentHash = hash(entry.target);
        entry.target.clear();
    }
    // The permissions of a link mean nothing, and few programs set its time.
    entry.mode = entry.kind == 'l' ? 0 : entry.mode & tolerance.modeMask;
    return entry;
}

std::string differenceOf(const TreeEntry& expected, const TreeEntry& actual, std::int64_t seconds)
{
    if (expected.kind != actual.kind)
        return std::string("is ") + actual.kind + ", not " + expected.kind;
    if (expected.sizeInBytes != actual.sizeInBytes)
        return "has " + std::to_string(actual.sizeInBytes) + " bytes, not "
            + std::to_string(expected.sizeInBytes);
    if (expected.contentHash != actual.contentHash)
        return "has other content";
    if (expected.target != actual.target)
        return "leads to '" + actual.target + "', not '" + expected.target + "'";
    if (expected.mode != actual.mode)
        return "has mode " + std::to_string(actual.mode) + ", not " + std::to_string(expected.mode)
            + " (decimal)";
    if (seconds >= 0 && expected.kind != 'l' && std::abs(expected.time - actual.time) > seconds)
        return "has time " + std::to_string(actual.time) + ", not " + std::to_string(expected.time);
    return {};
}

} // namespace

TreeSnapshot snapshot(const std::filesystem::path& folder)
{
    TreeSnapshot tree;
    const FileDescriptor root(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    addTo(tree, root.number(), "");
    return tree;
}

std::vector<std::string> differences(
    const TreeSnapshot& expected, const TreeSnapshot& actual, const Tolerance& tolerance)
{
    std::vector<std::string> lines;
    for (const auto& [path, entry] : expected) {
        const auto found = actual.find(path);
        const std::string difference = found == actual.end()
            ? "is missing"
            : differenceOf(
                through(tolerance, entry), through(tolerance, found->second), tolerance.seconds);
        if (!difference.empty())
            lines.emplace_back(path).append(" ").append(difference);
    }
    for (const auto& [path, entry] : actual) {
        if (!expected.contains(path))
            lines.push_back(path + " is extra");
    }
    return lines;
}

} // namespace support
