#include "platform/base/files/FileTree.h"

#include "system/LastError.h"

#include <string>

#include <dirent.h>
#include <unistd.h>

using TreeWalk::Cursor;
using TreeWalk::Names;

std::uint64_t FileTree::countEntries(const std::filesystem::path& top, const std::stop_token& stop)
{
    std::uint64_t count = 0;
    const auto enter = [&](const Cursor& at) {
        Names folders;
        (void)TreeWalk::forEachEntry(at.folder(), [&](const std::string& name, unsigned char kind) {
            ++count;
            if (kind == DT_DIR && !stop.stop_requested())
                folders.push_back(name);
        });
        return stop.stop_requested() ? Names() : folders;
    };
    (void)TreeWalk::walk(top, {.enter = enter}, Permissions::respected);
    return count;
}

std::error_code FileTree::remove(const std::filesystem::path& top, Permissions permissions)
{
    std::error_code failure;
    const auto note = [&](std::error_code reason) {
        if (!failure)
            failure = reason;
    };
    const auto enter = [&](const Cursor& at) {
        Names folders;
        Names others; // removed when the list is complete, for their folder may not change before
        note(TreeWalk::forEachEntry(at.folder(), [&](const std::string& name, unsigned char kind) {
            (kind == DT_DIR ? folders : others).push_back(name);
        }));
        for (const std::string& name : others)
            note(errorOf(::unlinkat(at.folder(), name.c_str(), 0)));
        return folders;
    };
    // One that could not be entered may still be empty; where it is not, that was the reason.
    const auto done = [&](const Cursor& above, const std::string& name, std::error_code reason) {
        if (const auto left = errorOf(::unlinkat(above.folder(), name.c_str(), AT_REMOVEDIR)))
            note(reason ? reason : left);
    };
    const auto removed = errorOf(::unlinkat(AT_FDCWD, top.c_str(), 0));
    if (removed != std::errc::is_a_directory)
        return removed;
    note(TreeWalk::walk(top, {.enter = enter, .done = done}, permissions));
    return failure;
}
