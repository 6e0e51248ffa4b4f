// Where the items of an archive of hard links are staged: on their own file system wherever that
// can be, so that files need no copying. That is the private folder in which the archive is made,
// or the usual working folder, or a scratch folder beside the first item; where none of them will
// do, the usual one. What lies on yet another file system, or cannot be linked, is copied.
#pragma once

#include "platform/base/files/ScratchFolder.h"

#include <filesystem>
#include <optional>

class StagingPlace
{
public:
    using Path = std::filesystem::path;

    StagingPlace(const Path& firstItem, const Path& privateFolder, const Path& workingFolder);

    [[nodiscard]] const Path& path() const { return _path; }

private:
    std::optional<ScratchFolder> _beside;
    Path _path;
};
