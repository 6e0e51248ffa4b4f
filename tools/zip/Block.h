// What goes through the pipeline: several whole entries, or one piece.
#pragma once

#include "tools/common/PieceBlock.h"
#include "tools/zip/ZipFormat.h"

#include <vector>

// An entry, or one piece of a file that is larger than a block.
struct Member {
    ZipFormat::Entry entry; // of a piece: set in the first
    std::size_t begin = 0; // of its bytes in the block's input
    std::size_t size = 0;
    bool isFirst = true;
    bool isLast = true;
    bool isStored = false; // not to be compressed
    bool isAbandoned = false; // with the last piece: reading failed, the entry must go
    // What the worker finds out.
    std::uint32_t crc = 0;
    std::size_t outputBegin = 0; // of the local header in the block's output; whole entries only

    [[nodiscard]] bool isWhole() const { return isFirst && isLast; }
};

// Its output is, of whole entries, ready to be written, headers included; of a piece its data,
// unless it is stored.
struct Block : PieceBlock {
    std::vector<Member> members;
    std::size_t nameBytes = 0; // of the whole entries

    [[nodiscard]] std::span<const std::byte> dataOf(const Member& member) const
    {
        return {input.get() + member.begin, member.size};
    }
    void clear()
    {
        PieceBlock::clear();
        members.clear();
        nameBytes = 0;
    }
};
