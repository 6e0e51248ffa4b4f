// The file an archive is written to. A new archive grows under a hidden name beside its final one
// and gets that only when it is complete, so whatever happens to the process, the final name holds
// what it held before or the whole archive. An existing archive is opened in place and locked.
//
// All operations throw Failure; those of a hidden file that is not committed leave nothing behind.
#pragma once

#include "system/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include <sys/stat.h>

class OutputFile
{
public:
    // A new hidden file beside `path`, with the permissions that new files get. Such files of runs
    // that were killed are removed.
    static OutputFile createBeside(const std::string& path);

    // The regular file at `path`, locked for this process: waits for others that add to it. None if
    // there is no such file.
    static std::optional<OutputFile> openExisting(const std::string& path);

    OutputFile(OutputFile&& other) noexcept;
    OutputFile& operator=(OutputFile&&) = delete;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    // Writes at the position and moves it on.
    void append(std::span<const std::byte> bytes);
    // Writes elsewhere, leaving the position alone.
    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes);

    [[nodiscard]] std::uint64_t position() const { return _position; }
    void setPosition(std::uint64_t position) { _position = _writebackEnd = position; }

    // Ends the file at the position.
    void truncateHere();

    [[nodiscard]] bool isInPlace() const { return _hiddenPath.empty(); }
    [[nodiscard]] int descriptor() const { return _file.number(); }
    // Whether `status` describes this very file.
    [[nodiscard]] bool isSameFile(const struct stat& status) const;
    // Size and identity when the file was opened.
    [[nodiscard]] const struct stat& status() const { return _status; }

    // Makes sure that the system has taken all that was written: some file systems tell only now.
    void flush();

    enum class Existing { Keep, Replace };
    // Gives the complete file its final name. With Existing::Keep it is a failure of kind NameTaken
    // if that name is taken by now.
    void commit(Existing existing);
    // The same with everything on the disk before the name is. False, after a warning, if the name
    // itself may not have got there: the archive is complete then, but a power cut could lose it.
    [[nodiscard]] bool commitDurably(Existing existing);

private:
    OutputFile(
        FileDescriptor file, const struct stat& status, std::string path, std::string hiddenPath);
    void discard();
    void rename(Existing existing);

    FileDescriptor _file;
    std::string _path;
    std::string _hiddenPath; // empty for a file in place
    struct stat _status {
    };
    std::uint64_t _position = 0;
    std::uint64_t _writebackEnd = 0; // the disk has been told of what lies before
};
