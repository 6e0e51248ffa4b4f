// The place where an archive is to stand. It knows what stands there from its making on, and puts
// the new archive into the place of that and of nothing else: a file that somebody else has put
// there meanwhile stays, and the archive gets the next free name beside it.
#pragma once

#include "system/FileDescriptor.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

class ArchivePlace
{
public:
    using Path = std::filesystem::path;

    // The extension of the type: numbers that a free name takes stand before it. When it may not
    // replace anything, what stands there counts as somebody else's.
    ArchivePlace(Path path, std::string_view extension, bool mayReplace);

    // Where the archive stands, once it does: the path given, or one beside it.
    [[nodiscard]] const Path& path() const { return _path; }

    // Whether anything does, or did; and a folder, which no archive may replace.
    [[nodiscard]] bool isTaken() const { return static_cast<bool>(_former); }
    [[nodiscard]] bool isTakenByFolder() const;

    // Moves a complete file of the same file system there in one rename, flushed to the disk
    // before it gets the name, with the permissions of what it replaces; that is left at the path
    // that it had, or gone. After a failure all stands as it stood.
    [[nodiscard]] std::error_code put(const Path& made);

    // Where a file of somebody else's is now that could not be put back to its name.
    [[nodiscard]] const std::optional<Path>& movedAside() const { return _movedAside; }

private:
    void _keepPermissions(const Path& made) const;
    [[nodiscard]] std::error_code _exchange(const Path& made);
    [[nodiscard]] std::error_code _keepBoth(const Path& other);
    [[nodiscard]] std::error_code _takeFreeName(const Path& file, Path& path);
    [[nodiscard]] bool _isFormer(const Path& path) const;

    Path _path;
    std::string _extension;
    std::optional<Path> _movedAside;
    FileDescriptor _former; // held, so that no other file can get its identity
};
