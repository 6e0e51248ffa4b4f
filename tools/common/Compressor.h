// Raw deflate (RFC 1951) of memory, for one thread.
//
// What does not compress is recognised by the counts of its bytes and a few quick trials; it is
// then left alone, which costs little more than copying. Missed are repeats of less than some 300
// bytes that the trials do not see (4 KiB in each 64 KiB are tried): such data comes out correct,
// only larger than it could.
//
// Text logs whose lines have much in common (access logs, package logs) are recognised, too: there
// the search of the library's middle levels gives up long before zlib's does, and the result was up
// to 1.3% larger. They get one level more, or two where a trial shows that one would not tell.
#pragma once

#include "tools/common/ByteBuffer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

struct libdeflate_compressor;

// The unit of parallel work, in bytes. Smaller pieces lose more matches at their starts (256 KiB
// costs 0.4% of size), larger ones need more memory and leave threads idle at the end of a file.
inline constexpr std::size_t pieceSize = std::size_t{1} << 20;

// Whether a quick look finds nothing to gain in `data`. Small data counts as such only when it
// begins like a compressed format.
bool looksIncompressible(std::span<const std::byte> data);

// Whether a trial of all of it, at the quickest level, gains anything to speak of.
bool compressesQuickly(std::span<const std::byte> data);

class Compressor
{
public:
    // `level` is 1 to 9.
    explicit Compressor(int level);
    ~Compressor();
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    // Appends a complete stream to `output` and returns its size, or leaves `output` as it was and
    // returns 0 when that would not be smaller than `input`.
    std::size_t compressSmaller(std::span<const std::byte> input, ByteBuffer& output);

    // Appends one piece of a stream to `output`. Any piece but the last ends on a byte boundary and
    // must be followed by another. Parts that do not compress go into stored blocks.
    void compressPiece(std::span<const std::byte> input, bool isLast, ByteBuffer& output);

    // Fills `data` with what a piece was made of, of which a stream is made for that.
    static void restorePiece(ByteBuffer& piece, std::span<std::byte> data);

    // The most bytes that compressed pieces of together `size` bytes can take.
    static std::uint64_t worstSize(std::uint64_t size);

private:
    void _compressRun(std::span<const std::byte> input, bool isLast, ByteBuffer& output);

    struct Free {
        void operator()(libdeflate_compressor* compressor) const;
    };
    using Library = std::unique_ptr<libdeflate_compressor, Free>;
    libdeflate_compressor* _with(int moreLevels);
    libdeflate_compressor* _compressorFor(std::span<const std::byte> input);

    const int _level;
    std::array<Library, 3> _libraries; // with so many levels more, made when they are needed
};
