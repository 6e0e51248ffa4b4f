// A private folder, below the temporary directory or in a given one, which lives as long as this
// object and goes with everything in it. It is locked for that time: a folder of ours that nobody
// has locked belonged to a process that was killed, and the next one made removes it.
#pragma once

#include "system/FileDescriptor.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

// "cannot make a working folder in X: reason".
class ScratchFolderFailure : public std::system_error
{
public:
    using std::system_error::system_error;
};

class ScratchFolder
{
public:
    // Throw ScratchFolderFailure. The second makes a hidden one inside a folder of the user's.
    ScratchFolder();
    explicit ScratchFolder(const std::filesystem::path& inFolder);
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    [[nodiscard]] const std::filesystem::path& path() const { return _path; }

    // Locks another private folder in the same way, as long as the descriptor is open. None when
    // the folder is not there, is not this user's, or another process holds it.
    [[nodiscard]] static FileDescriptor hold(const std::filesystem::path& folder);

    // Removes what a process that was killed has left in a folder that this one holds now. What
    // cannot be removed stays.
    static void empty(const std::filesystem::path& folder);

    // Removes the folders of ours in there, a temporary directory, that nobody holds.
    static void removeStaleFolders(const std::filesystem::path& parent);

private:
    void _make(const std::filesystem::path& parent, const std::string& beginning,
        bool (*isOne)(std::string_view name));

    std::filesystem::path _path;
    FileDescriptor _lock; // never inherited by a child, which would prolong it
};
