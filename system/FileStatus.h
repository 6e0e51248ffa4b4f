#pragma once

#include <sys/stat.h>

// What the system tells of a file, by a name that no function has as well.
using FileStatus = struct stat;

inline bool isSameFile(const FileStatus& a, const FileStatus& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}
