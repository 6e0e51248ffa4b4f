// What a walk that follows links comes to under more than one name, whatever the files' own counts
// of names say: files that links lead to, and folders that are entered more than once. Found by a
// walk of its own that opens every folder but no file, and asks the system only about links: that
// takes a hundredth of the time that the archive does. While it lasts it remembers 16 bytes for
// each folder and each link to a file, afterwards only for what it has found.
#pragma once

#include "system/FileStatus.h"
#include "tools/common/OwnFiles.h"
#include "tools/common/TreeWalk.h"

#include <string>
#include <utility>
#include <vector>

class LinkedFiles
{
public:
    LinkedFiles(
        const std::string& folder, const TreeWalkOptions& options, const OwnFiles& ownFiles);

    // Whether a link leads to this file, or this folder is entered again.
    [[nodiscard]] bool contains(const FileStatus& status) const;

private:
    using Identity = std::pair<dev_t, ino_t>;
    class Collector;

    std::vector<Identity> _identities; // sorted
};
