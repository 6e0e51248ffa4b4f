// Joins complete deflate streams (RFC 1951) to one, so that pieces of a file compressed in parallel
// still form a single stream.
//
// A complete stream differs from one that goes on in two ways only: its last block carries the
// final bit, and it ends anywhere within a byte. So the last block's header is found and the bit
// cleared, and an empty stored block, which is 3 header bits, padding to the next byte, and 4 bytes
// of length, brings the end to a byte boundary. The next piece is then simply appended.
//
// Finding that header takes a walk over the Huffman codes of all blocks before it: only the number
// of bits of each symbol matters, so one table look-up takes several literals at once. The last
// block itself is not walked: its end follows from the last bit that is set, because the
// end-of-block code is known and nothing but zero padding follows. A stream of one block costs no
// more than reading its header.
//
// Costs 4 or 5 bytes a piece, and the matches that would have reached back over a piece's start.
#pragma once

#include <cstddef>
#include <span>

// What makeContinuable() may add to a stream, in bytes.
inline constexpr std::size_t continuationSize = 5;

// Where a complete deflate stream's last block begins and where its last code ends, in bits.
struct DeflateTail {
    std::size_t lastBlockBit;
    std::size_t endBit;
};

// `stream` is a whole deflate stream without surplus bytes. Throws std::runtime_error when what is
// read of it, which is not all, shows that it is no such stream.
DeflateTail findDeflateTail(std::span<const std::byte> stream);

// Turns the complete stream in the first `size` bytes of `buffer` into one that must be continued
// and ends on a byte boundary; the buffer has room for continuationSize bytes more. Returns the new
// size.
std::size_t makeContinuable(std::span<std::byte> buffer, std::size_t size);
