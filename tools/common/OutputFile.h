// The file an archive is written to. A new archive grows in a PartFile beside its final name, so
// whatever happens to the process, that name holds what it held before or the whole archive. An
// existing archive is opened in place and locked.
//
// All operations throw Failure; those of a new file that is not committed leave nothing behind.
#pragma once

#include "system/FileDescriptor.h"
#include "system/FileStatus.h"
#include "system/PartFile.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

class OutputFile
{
public:
    using Existing = FileName::Existing;

    // A new file that shall be called `path`, with the permissions that new files get.
    static OutputFile createBeside(const std::string& path);

    // The regular file at `path`, locked for this process: waits for others that add to it. None if
    // there is no such file.
    static std::optional<OutputFile> openExisting(const std::string& path);

    // Writes at the position and moves it on.
    void append(std::span<const std::byte> bytes);
    // Writes elsewhere, leaving the position alone.
    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes);
    // Reads back what is there.
    void readAt(std::uint64_t offset, std::span<std::byte> bytes) const;

    [[nodiscard]] std::uint64_t position() const { return _position; }
    void setPosition(std::uint64_t position) { _position = _writebackEnd = position; }

    // Ends the file at the position.
    void truncateHere();

    [[nodiscard]] bool isInPlace() const { return !_part; }
    [[nodiscard]] int descriptor() const { return _part ? _part->descriptor() : _file.number(); }
    // Size and identity when the file was opened.
    [[nodiscard]] const FileStatus& status() const { return _status; }

    // Makes sure that the system has taken all that was written to a file in place.
    void flush();

    // Gives the complete file its final name. With Existing::keep it is a failure of kind nameTaken
    // if that name is taken by now.
    void commit(Existing existing);
    // The same with everything on the disk before the name is. False, after a warning, if the name
    // itself may not have got there: the archive is complete then, but a power cut could lose it.
    [[nodiscard]] bool commitDurably(Existing existing);

private:
    explicit OutputFile(std::string path)
        : _path(std::move(path))
    {
    }
    void _checkCommit(const std::error_code& failure) const;

    std::string _path;
    std::optional<PartFile> _part; // what is not in place
    FileDescriptor _file; // what is
    FileStatus _status{};
    std::uint64_t _position = 0;
    std::uint64_t _end = 0; // of the file, or further if a write has failed
    std::uint64_t _writebackEnd = 0; // the disk has been told of what lies before
};
