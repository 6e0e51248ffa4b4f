#include "tests/support/TreeSnapshot.h"

#include "system/FileDescriptor.h"
#include "tests/support/Files.h"

#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace support
{

namespace
{

void addTo(TreeSnapshot& tree, const FileDescriptor& folder, const std::string& pathOfFolder)
{
    if (!folder)
        return; // unreadable
    const auto place = std::filesystem::path("/proc/self/fd") / std::to_string(folder.number());
    for (const std::string& name : namesIn(place)) {
        struct stat status = {};
        ::lstat((place / name).c_str(), &status);
        TreeEntry& entry = tree[pathOfFolder + name];
        entry = {.kind = "?p??d???f?l?????"[status.st_mode >> 12 & 15],
            .mode = status.st_mode & 07777,
            .time = status.st_mtim.tv_sec};
        if (entry.kind == 'f') {
            std::ostringstream content; // of an unreadable file nothing
            content << std::ifstream(place / name).rdbuf();
            entry.content = std::to_string(std::hash<std::string>{}(content.str()));
        } else if (entry.kind == 'l') {
            entry.content = std::filesystem::read_symlink(place / name);
        } else if (entry.kind == 'd') {
            constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
            const FileDescriptor inside(::openat(folder.number(), name.c_str(), flags));
            addTo(tree, inside, pathOfFolder + name + "/");
        }
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
        if (std::abs(found.mapped().time - entry.time) <= tolerance.seconds)
            found.mapped().time = entry.time;
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
