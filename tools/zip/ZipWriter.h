// The writer's end of the pipeline: puts entries into a new archive, or behind the members of an
// existing one, and the central directory behind them.
//
// In an existing archive the new entries take the place of the central directory, so that adding
// costs what the entries cost and not what the archive does. Until finish() has returned, the old
// directory is put back whenever the writer goes: after a failure or a signal the archive is byte
// for byte what it was. What can't be undone is the process being killed while it adds; the program
// therefore adds only in its own scratch folder.
#pragma once

#include "tools/common/ByteBuffer.h"
#include "tools/common/OutputFile.h"
#include "tools/zip/Block.h"
#include "tools/zip/ExistingArchive.h"
#include "tools/zip/OldDirectory.h"
#include "tools/zip/SpillBuffer.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class ZipWriter
{
public:
    enum class Existing { addTo, replace };
    // What is told of an entry when it is in the archive: whole lines, or nothing.
    using ProgressLine = std::function<std::string(const ZipFormat::Entry& entry)>;

    // Opens the archive at `path`, or begins a new one if there is none, an empty file, or one that
    // is to be replaced. Of one that it adds to it tells whether that holds the item.
    ZipWriter(const std::string& path, Existing existing, ProgressLine progressLine,
        std::string_view item = {});
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    [[nodiscard]] const OutputFile& file() const { return _file; }
    // What it adds to; empty for a new archive.
    [[nodiscard]] const ExistingArchive& existing() const { return _existing; }

    // Writes a block that a worker has finished, then tells its entries as progress.
    void add(const Block& block);

    // Writes the central directory and completes the archive. False, after a warning, if a power
    // cut could lose one that replaces another; what is added to in place, or only gets its name
    // here, is for whoever delivers the archive to secure.
    [[nodiscard]] bool finish();

    // Entries that have come, abandoned ones included.
    [[nodiscard]] std::uint64_t entryCount() const { return _entryCount; }

private:
    struct Piece {
        std::size_t size = 0;
        std::size_t compressedSize = 0;
    };

    void _append(std::span<const std::byte> bytes);
    void _addPiece(const Block& block, const Member& piece);
    void _finishOpen();
    void _storeOpen();
    void _addRecord(const ZipFormat::Entry& entry);
    void _restore();

    const Existing _existingMode;
    const ProgressLine _progressLine;
    OutputFile _file;
    const bool _isInPlace;
    const ExistingArchive _existing; // empty for a new archive
    OldDirectory _oldDirectory;
    SpillBuffer _records; // new ones
    ZipFormat::Entry _open; // of the pieces that come one after the other
    std::vector<Piece> _pieces; // of the open entry so far
    ByteBuffer _readBack; // a piece
    ByteBuffer _restored; // of the file
    std::string _progress;
    std::uint64_t _entryCount = 0;
    std::uint64_t _newRecords = 0;
    bool _usesZip64; // a record, old or new, or the end that was there
    bool _isFinished = false;
};
