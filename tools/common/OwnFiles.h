// What of a walked tree is the run's own doing and must not get into the archive: the archive that
// is being written, and the program's scratch folder when the dropped item contains it.
#pragma once

#include "tools/common/OutputFile.h"

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
    [[nodiscard]] bool isScratchFolder(const FileStatus& status) const
    {
        return _scratchFolder && isSameFile(*_scratchFolder, status);
    }

private:
    FileStatus _output{};
    std::optional<FileStatus> _scratchFolder;
};
