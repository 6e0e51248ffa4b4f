// The entries of files that have several names, to store the other names as hard links to. Forgets
// a file when all its names have come, and remembers no more when there are very many: other names
// are then stored as files of their own.
#pragma once

#include "system/FileStatus.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>

class HardLinks
{
public:
    // The entry that `status` is another name of; null if it is none. Valid until the next call.
    const std::string* find(const FileStatus& status);

    // Remembers the first name of a file, if it has more.
    void add(const FileStatus& status, const std::string& name);

private:
    struct First {
        std::string name;
        nlink_t namesToCome;
    };
    std::map<std::pair<dev_t, ino_t>, First> _files;
    std::string _found;
    std::size_t _size = 0; // what is remembered, in bytes
};
