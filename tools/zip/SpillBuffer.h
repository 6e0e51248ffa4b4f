// Bytes that are collected now and written later, in a bounded amount of memory: past a limit they
// go to a nameless temporary file. Throws Failure when that can't be made or written.
#pragma once

#include "system/FileDescriptor.h"
#include "tools/common/ByteBuffer.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

class SpillBuffer
{
public:
    // The temporary file is made in `folder`, if need be.
    explicit SpillBuffer(std::string folder)
        : _folder(std::move(folder))
    {
    }

    void append(std::span<const std::byte> bytes);
    [[nodiscard]] std::uint64_t size() const { return _spilled + _memory.size(); }

    // Hands the first `size` bytes to `take`, piece by piece.
    void read(
        std::uint64_t size, const std::function<void(std::span<const std::byte>)>& take) const;

private:
    void _spill();

    std::string _folder;
    ByteBuffer _memory; // what follows the spilled bytes
    FileDescriptor _file;
    std::uint64_t _spilled = 0;
};
