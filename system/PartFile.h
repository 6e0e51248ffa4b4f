// A file that gets its name when it is complete. Until then it grows beside that name under a
// hidden one, ".NAME.part-" and six letters, and is locked: one that nobody has locked belonged to
// a process that was killed, and the next one made for the same name removes it. Without a commit
// it is removed with this object. Whatever happens to the process, the name stands for what it
// stood for before or for the whole file.
#pragma once

#include "system/FileDescriptor.h"
#include "system/FileName.h"

#include <string>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/types.h>

class PartFile
{
public:
    using Existing = FileName::Existing;

    // A new file for `path`, which is relative to an open folder or else to the working folder,
    // with the permissions `mode` without the process's umask. False if it cannot be made: then
    // failure() tells why.
    // Of many files for a folder where nobody else makes any, none is locked or looks for abandoned
    // ones: that takes reading the folder.
    enum class Place { shared, own };
    PartFile(std::string path, mode_t mode, int folder = AT_FDCWD, Place place = Place::shared);
    PartFile(PartFile&& other) noexcept;
    PartFile& operator=(PartFile&&) = delete;
    ~PartFile();

    explicit operator bool() const { return static_cast<bool>(_file); }
    [[nodiscard]] std::error_code failure() const { return _failure; }

    // Open for reading and writing.
    [[nodiscard]] int descriptor() const { return _file.number(); }

    // Gives the file its name once the system has taken all that was written: some file systems
    // tell only then that there was no room. Still open afterwards.
    [[nodiscard]] std::error_code commit(Existing existing);

    // The same with all of it on the disk before the name is, and the name there, too, unless the
    // file system or the folder's permissions are against it.
    [[nodiscard]] std::error_code commitDurably(Existing existing);
    // What was against it: a power cut could take the name away again.
    [[nodiscard]] std::error_code nameFailure() const { return _nameFailure; }

private:
    void _create(mode_t mode, Place place);
    void _removeAbandoned() const;
    [[nodiscard]] FileDescriptor _openFolder() const;
    [[nodiscard]] std::string _hiddenPrefix() const; // of the path, without its six letters

    int _folder;
    std::string _path;
    std::string _hiddenPath; // empty once it has its name
    FileDescriptor _file;
    std::error_code _failure;
    std::error_code _nameFailure;
};
