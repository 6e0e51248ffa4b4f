// What goes through the pipeline: the next bytes of the tar stream, then the same compressed.
#pragma once

#include "tools/common/Compressor.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct StreamBlock {
    StreamBlock()
        : input(std::make_unique_for_overwrite<std::byte[]>(pieceSize))
    {
    }

    std::unique_ptr<std::byte[]> input;
    std::size_t used = 0;
    bool isLast = false;
    std::string progress; // the lines of the entries that end here
    // What the worker finds out.
    std::uint32_t crc = 0;
    std::vector<std::byte> output;

    [[nodiscard]] std::span<std::byte> room() const
    {
        return std::span(input.get(), pieceSize).subspan(used);
    }
    [[nodiscard]] std::span<const std::byte> data() const { return {input.get(), used}; }
    void clear()
    {
        used = 0;
        isLast = false;
        progress.clear();
        output.clear();
    }
};
