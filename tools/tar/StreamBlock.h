// What goes through the pipeline: the next bytes of the tar stream, then the same compressed.
#pragma once

#include "tools/common/PieceBlock.h"

#include <string>

struct StreamBlock : PieceBlock {
    bool isLast = false;
    std::string progress; // the lines of the entries that end here
    std::uint32_t crc = 0; // what the worker finds out, besides the output

    [[nodiscard]] std::span<const std::byte> data() const { return {input.get(), used}; }
    void clear()
    {
        PieceBlock::clear();
        isLast = false;
        progress.clear();
    }
};
