// The entries of files that may be met again. Whatever name such a file is met by later becomes a
// hard link to its first entry, if it has not changed since.
//
// That is any file, as links and folders that are entered again come to it by other names. Of a
// tree of usual size all are remembered; of a larger one, from some file on, only those that a walk
// ahead finds (LinkedFiles) or that have several names, so that memory does not grow with the tree.
// That is bounded, too, so that a million linked files do not take the machine's memory: beyond
// that, files are stored under each of their names.
#pragma once

#include "system/FileStatus.h"
#include "tools/tar/LinkedFiles.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

class HardLinks
{
public:
    using WalkAhead = std::function<LinkedFiles()>;

    explicit HardLinks(WalkAhead walkAhead)
        : _walkAhead(std::move(walkAhead))
    {
    }

    // The files that follow are in this folder.
    void enter(const FileStatus& folder) { _folder = folder; }

    // The entry that `status` is another name of; null if it is none.
    [[nodiscard]] const std::string* find(const FileStatus& status) const;

    // Remembers the first name of a file that may be met again.
    void add(const FileStatus& status, const std::string& name);

private:
    struct First {
        std::string name;
        timespec changed; // another file may get the inode of one that is removed
    };

    const WalkAhead _walkAhead;
    std::optional<LinkedFiles> _linked; // of a large tree
    FileStatus _folder{};
    std::map<std::pair<dev_t, ino_t>, First> _files;
    std::size_t _size = 0; // what is remembered, in bytes
};
