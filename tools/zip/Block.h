// What goes through the pipeline: several whole entries, or one piece.
#pragma once

#include "tools/common/Compressor.h"
#include "tools/zip/ZipFormat.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
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

struct Block {
    Block()
        : input(std::make_unique_for_overwrite<std::byte[]>(pieceSize))
    {
    }

    std::unique_ptr<std::byte[]> input;
    std::size_t used = 0; // bytes of the input
    std::vector<Member> members;
    std::size_t nameBytes = 0; // of the whole entries
    // Whole entries: ready to be written, headers included. A piece: its data, unless it is stored.
    std::vector<std::byte> output;

    [[nodiscard]] std::span<std::byte> room() const
    {
        return std::span(input.get(), pieceSize).subspan(used);
    }
    [[nodiscard]] std::span<const std::byte> dataOf(const Member& member) const
    {
        return std::span<const std::byte>(input.get(), pieceSize)
            .subspan(member.begin, member.size);
    }
    void clear()
    {
        used = 0;
        members.clear();
        nameBytes = 0;
        output.clear();
    }
};
