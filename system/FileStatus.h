#pragma once

#include <sys/stat.h>

// What the system tells of a file, by a name that no function has as well.
using FileStatus = struct stat;

inline bool isSameFile(const FileStatus& a, const FileStatus& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

inline bool isSameTime(const timespec& a, const timespec& b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// Whether a file was written to between the two. A changed inode time alone is enough, unless it
// comes from another name of the file made or removed.
inline bool hasChanged(const FileStatus& before, const FileStatus& after)
{
    return before.st_size != after.st_size || !isSameTime(before.st_mtim, after.st_mtim)
        || (!isSameTime(before.st_ctim, after.st_ctim) && before.st_nlink == after.st_nlink);
}
