// The central directory of an archive that is added to. It lies where new entries have to go, so
// what they overwrite of it is held in memory; the rest stays in the file until it is moved behind
// them. A run for a small item thus needs no memory for the directory: that of 5,000 entries would
// take the system longer to provide than to copy, and a fifth of the whole run.
//
// Whatever fails, the directory can be put back, and that takes no memory.
#pragma once

#include "tools/common/OutputFile.h"
#include "tools/zip/SpillBuffer.h"
#include "tools/zip/ZipFormat.h"

#include <cstdint>
#include <string>

class OldDirectory
{
public:
    // What is held of a large one goes to a temporary file in `spillFolder`.
    OldDirectory(
        OutputFile& file, const ZipFormat::Directory& directory, const std::string& spillFolder);

    // To be called before the file is written up to `end`.
    void holdUpTo(std::uint64_t end);

    // Puts the whole directory at the file's position, which moves behind it. What is there of the
    // file has been written by then.
    void moveToPosition();

    // Puts it where it was; the position is behind it then.
    void putBack();

private:
    [[nodiscard]] std::uint64_t _heldEnd() const { return _begin + _held.size(); }
    void _moveRest(std::uint64_t distance);
    void _writeHeld(std::uint64_t offset);

    OutputFile& _file;
    const std::uint64_t _begin; // in the file, at first
    const std::uint64_t _end;
    SpillBuffer _held; // its first bytes
    std::uint64_t _movedBegin; // what lay from here on
    std::uint64_t _distance = 0; // lies so much further on now
};
