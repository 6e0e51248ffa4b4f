// What goes through a tool's pipeline: up to a piece of input, and what a worker makes of it.
#pragma once

#include "tools/common/ByteBuffer.h"
#include "tools/common/Compressor.h"

struct PieceBlock {
    std::unique_ptr<std::byte[]> input = std::make_unique_for_overwrite<std::byte[]>(pieceSize);
    std::size_t used = 0; // bytes of the input
    ByteBuffer output;

    [[nodiscard]] std::span<std::byte> room() const
    {
        return {input.get() + used, pieceSize - used};
    }
    void clear()
    {
        used = 0;
        output.clear();
    }
};
