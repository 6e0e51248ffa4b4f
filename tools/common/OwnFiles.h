// What of a walked tree is the run's own doing and must not get into the archive: the archive that
// is being written, and the program's scratch folder when the dropped item contains it.
#pragma once

#include "tools/common/OutputFile.h"

#include <optional>
#include <string>

#include <sys/stat.h>

class OwnFiles
{
public:
    // `workingFolder` is taken for a scratch folder if it is called like one.
    OwnFiles(const OutputFile& output, const std::string& workingFolder);

    [[nodiscard]] bool isOutput(const struct stat& status) const;
    [[nodiscard]] bool isScratchFolder(const struct stat& status) const;

private:
    struct stat _output;
    std::optional<struct stat> _scratchFolder;
};
