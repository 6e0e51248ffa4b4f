// The one walk through folder trees, on which counting, copying and removing stand. It goes by
// descriptor and without recursion: neither the depth nor the length of a path is limited, and
// links are never followed, also not one that takes a folder's place meanwhile. A path that cannot
// be opened in one piece can therefore be below the top, but not be the top.
#pragma once

#include "system/FileDescriptor.h"

#include <filesystem>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/types.h>

namespace TreeWalk
{

enum class Permissions {
    respected,
    overridden, // folders that deny their owner something are opened up first
};

// A place in a tree: that folder and the top open, whatever the depth, and the names between. It
// goes down by name and back up by "..", and makes sure that this is the folder it came from; where
// it is not (the folder was moved, or may not be searched) it comes down again from the top,
// through the same folders.
class Cursor
{
public:
    explicit Cursor(Permissions permissions = Permissions::respected)
        : _permissions(permissions)
    {
    }

    // For the ...at calls; before the top is entered, the working folder.
    [[nodiscard]] int folder() const { return _levels.empty() ? AT_FDCWD : _folder.number(); }
    [[nodiscard]] const std::string& name() const { return _levels.back().name; }
    [[nodiscard]] std::filesystem::path path() const;
    [[nodiscard]] std::size_t depth() const { return _levels.size(); } // 1 in the top

    // Stays where it is if that fails.
    [[nodiscard]] std::error_code enter(const std::string& name);

    // Is in no folder of the tree any more if that fails.
    [[nodiscard]] std::error_code leave();

private:
    struct Level {
        std::string name;
        dev_t device;
        ino_t inode;
    };

    [[nodiscard]] std::error_code _comeDownAgain();
    [[nodiscard]] static bool _isAt(int descriptor, const Level& level);
    void _openUp(const std::string& name) const;

    Permissions _permissions;
    FileDescriptor _top;
    FileDescriptor _folder;
    std::vector<Level> _levels;
};

using Names = std::vector<std::string>;

// What is done on the way.
struct Visitor {
    // In a folder; gives the names of those in it to go on with.
    std::function<Names(const Cursor& at)> enter;
    // In it again, when all below it is done.
    std::function<void(const Cursor& at)> leave = {};
    // In the folder above: this one is done, or, with a reason, could not be entered.
    std::function<void(const Cursor& above, const std::string& name, std::error_code reason)> done
        = {};
};

// From the top down and back. A failure when the way back is lost, which ends the walk.
[[nodiscard]] std::error_code walk(
    const std::filesystem::path& top, const Visitor& visitor, Permissions permissions);

// Gives the name of each entry of an open folder, which is not to be changed meanwhile, and its
// kind as dirent has it (DT_DIR and so on).
[[nodiscard]] std::error_code forEachEntry(
    int folder, const std::function<void(const std::string& name, unsigned char kind)>& visit);

} // namespace TreeWalk
