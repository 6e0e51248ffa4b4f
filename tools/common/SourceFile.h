// A regular file on its way into an archive: opened without waiting or following what it should
// not, read up to the size it had when it was opened, and compared with that in the end.
#pragma once

#include "system/FileDescriptor.h"
#include "system/FileStatus.h"
#include "tools/common/ByteBuffer.h"
#include "tools/common/TreeWalk.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

class SourceFile
{
public:
    // Opens what the walk has found; if that fails, problem() tells why.
    explicit SourceFile(const TreeItem& item);

    [[nodiscard]] int descriptor() const { return _file.number(); }
    [[nodiscard]] const FileStatus& status() const { return _status; }
    [[nodiscard]] std::uint64_t size() const { return static_cast<std::uint64_t>(_status.st_size); }
    [[nodiscard]] std::uint64_t remaining() const { return size() - _offset; }

    // Fills `buffer` as far as the file goes, by the size it was opened with. Fewer bytes than both
    // mean that it has ended early or that reading failed.
    std::size_t read(std::span<std::byte> buffer);

    // Before the first read: whether samples of the file suggest that none of it compresses. They
    // are kept, and not read again: of photographs they are most of the file.
    [[nodiscard]] bool looksIncompressible();

    // After the last read: looks whether the file is still what it was when it was opened.
    void finish();

    // What went wrong, empty if nothing has. Of a file that could not be opened, or not be read, no
    // part may be taken for the whole; one that changed can be stored as it was read.
    [[nodiscard]] const std::string& problem() const { return _problem; }
    [[nodiscard]] bool isUnreadable() const { return _isUnreadable; }

private:
    std::ptrdiff_t _fill(std::span<std::byte> buffer);
    void _fail(int error);

    FileDescriptor _file;
    FileStatus _status{};
    std::uint64_t _offset = 0;
    ByteBuffer _samples; // one after the other,
    std::uint64_t _stride = 0; // which in the file are that far apart
    std::string _problem;
    bool _isUnreadable = false;
};

// The target of a link that the walk has found, as its bytes; none with errno.
std::optional<std::string> readLink(const TreeItem& item, const FileStatus& status);
