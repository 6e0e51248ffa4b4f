// The entries of files that may be met again: those that have several names, that links lead to, or
// that lie in a folder which is entered again. Whatever name such a file is met by later becomes a
// hard link to its first entry. What is remembered is bounded, so that a million linked files do
// not take the machine's memory: beyond that, files are stored under each of their names.
#pragma once

#include "system/FileStatus.h"
#include "tools/tar/LinkedFiles.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>

class HardLinks
{
public:
    explicit HardLinks(LinkedFiles linked)
        : _linked(std::move(linked))
    {
    }

    // The files that follow are in this folder.
    void enter(const FileStatus& folder) { _isEnteredAgain = _linked.contains(folder); }

    // The entry that `status` is another name of; null if it is none.
    [[nodiscard]] const std::string* find(const FileStatus& status) const;

    // Remembers the first name of a file that may be met again.
    void add(const FileStatus& status, const std::string& name);

private:
    const LinkedFiles _linked;
    bool _isEnteredAgain = false; // the folder
    std::map<std::pair<dev_t, ino_t>, std::string> _names;
    std::size_t _size = 0; // what is remembered, in bytes
};
