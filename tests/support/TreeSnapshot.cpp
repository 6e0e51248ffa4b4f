#include "tests/support/TreeSnapshot.h"

#include "system/FileBytes.h"
#include "system/FileDescriptor.h"
#include "tests/support/Files.h"

#include <array>
#include <cstdlib>
#include <functional>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>

namespace support
{

namespace
{

// Of an unreadable file that of an empty one. A block at a time: it may be larger than memory.
std::uint64_t hashOfFile(const std::filesystem::path& file)
{
    const FileDescriptor input(::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    std::string block(1 << 20, '\0');
    std::uint64_t result = 0;
    while (true) {
        const std::ptrdiff_t count
            = FileBytes::readFully(input.number(), std::as_writable_bytes(std::span(block)));
        if (count <= 0)
            return result;
        const std::string_view read(block.data(), static_cast<std::size_t>(count));
        result = result * 31 + std::hash<std::string_view>{}(read);
    }
}

char kindOf(mode_t mode)
{
    constexpr std::array<std::pair<mode_t, char>, 4> kinds
        = {{{S_IFREG, 'f'}, {S_IFDIR, 'd'}, {S_IFLNK, 'l'}, {S_IFIFO, 'p'}}};
    for (const auto& [bits, kind] : kinds)
        if ((mode & S_IFMT) == bits)
            return kind;
    return '?';
}

void addTo(TreeSnapshot& tree, const FileDescriptor& folder, const std::string& pathOfFolder)
{
    if (!folder)
        return; // unreadable
    const auto place = std::filesystem::path("/proc/self/fd") / std::to_string(folder.number());
    for (const std::string& name : namesIn(place)) {
        struct stat status = {};
        ::lstat((place / name).c_str(), &status);
        TreeEntry entry = {.kind = kindOf(status.st_mode),
            .mode = status.st_mode & 07777,
            .time = status.st_mtim.tv_sec};
        constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
        if (entry.kind == 'f') {
            entry.sizeInBytes = static_cast<std::uint64_t>(status.st_size);
            entry.contentHash = hashOfFile(place / name);
        } else if (entry.kind == 'l') {
            entry.target = std::filesystem::read_symlink(place / name);
        } else if (entry.kind == 'd') {
            const FileDescriptor inside(::openat(folder.number(), name.c_str(), flags));
            addTo(tree, inside, pathOfFolder + name + "/");
        }
        tree[pathOfFolder + name] = std::move(entry);
    }
}

std::string differenceOf(
    const TreeEntry& expected, const TreeEntry& actual, const Tolerance& tolerance)
{
    const auto difference = [](const char* what, const auto& is, const auto& shouldBe) {
        return what + std::to_string(is) + ", not " + std::to_string(shouldBe);
    };
    if (expected.kind != actual.kind)
        return std::string("is ") + actual.kind + ", not " + expected.kind;
    if (expected.sizeInBytes != actual.sizeInBytes)
        return difference("has size ", actual.sizeInBytes, expected.sizeInBytes);
    if (expected.contentHash != actual.contentHash)
        return "has other content";
    if (expected.target != actual.target)
        return "leads to '" + actual.target + "', not '" + expected.target + "'";
    if (expected.kind == 'l')
        return {}; // its permissions mean nothing, and few programs set its time
    if (((expected.mode ^ actual.mode) & tolerance.modeMask) != 0)
        return difference("has mode ", actual.mode, expected.mode) + " (decimal)";
    if (tolerance.seconds >= 0 && std::abs(expected.time - actual.time) > tolerance.seconds)
        return difference("has time ", actual.time, expected.time);
    return {};
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
    std::vector<std::string> lines;
    for (const auto& [path, entry] : expected) {
        const auto found = actual.find(path);
        const std::string difference
            = found == actual.end() ? "is missing" : differenceOf(entry, found->second, tolerance);
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
