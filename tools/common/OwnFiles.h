// What of a walked tree is the program's own doing and must not get into the archive: the archive
// that is being written, and scratch folders when the dropped item contains them: the one in which
// the tool works, and those that a job holds.
#pragma once

#include "system/ScratchName.h"
#include "tools/common/OutputFile.h"
#include "tools/common/TreeWalk.h"

#include <optional>
#include <string>

class OwnFiles
{
public:
    OwnFiles() = default; // none
    // `workingFolder` is taken for a scratch folder if it is called like one.
    OwnFiles(const OutputFile& output, const std::string& workingFolder);

    [[nodiscard]] bool isOutput(const FileStatus& status) const
    {
        return isSameFile(_output, status);
    }
    [[nodiscard]] bool isScratchFolder(const TreeItem& item, const FileStatus& status) const
    {
        return (_scratchFolder && isSameFile(*_scratchFolder, status))
            || ScratchName::isInUse(item.folder, item.name);
    }

private:
    FileStatus _output{};
    std::optional<FileStatus> _scratchFolder;
};
