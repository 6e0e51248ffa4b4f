// Reading with the interruptions and short counts that a read may have, seen to in one place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// Fills `buffer` from the descriptor's position; fewer bytes mean the end of the file. -1 with
// errno.
std::ptrdiff_t readFully(int descriptor, std::span<std::byte> buffer);

// The same from `offset`, leaving the position alone.
std::ptrdiff_t readFullyAt(int descriptor, std::uint64_t offset, std::span<std::byte> buffer);
