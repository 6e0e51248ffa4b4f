#include "tools/common/Compressor.h"

#include "tools/common/DeflateJoin.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <libdeflate.h>

namespace
{

constexpr std::size_t storedBlockSize = 65535; // the most that a stored block's length field holds

// First test: bytes that all occur about equally often. Of each 4 KiB, 1 KiB is counted, so a
// compressible part of that size is always seen. In a whole file 1 spot in 128 may be one all the
// same (headers, thumbnails), which is all that can be lost.
constexpr std::size_t spotSize = 1024;
constexpr std::size_t spotDistance = 4096;
constexpr std::size_t spotsPerException = 128;

// The sum of squared counts is about 5,100 for 1,024 random bytes, with a spread of 100, and over
// 7,000 for bytes that a Huffman code alone makes 3% smaller; text gives 30,000 and more. So most
// spots that fail do so by their first bytes: random ones give 190, with a spread of 11.
constexpr std::uint32_t evenSquares = 5500;
constexpr std::size_t glanceSize = 128;
constexpr std::uint32_t glanceSquares = 256;

// Second test, for even bytes only: long repeats as far back as a match reaches. Which places are
// compared depends on the bytes there, so that of equal parts the same ones are: those of one
// value, which are 1 in 256.
constexpr std::byte comparedValue{0xa5};
constexpr std::size_t longestDistance = std::size_t{32} << 10;
constexpr std::size_t bytesPerRepeated = 32; // fewer repeats than that are no loss

// Third test: short repeats, as a trial at the quickest level finds them.
constexpr std::size_t sampleSize = std::size_t{4} << 10;
constexpr std::size_t sampleDistance = std::size_t{64} << 10;
constexpr std::size_t bytesPerGained = 64; // less is not worth having

// What is smaller is simply compressed: little can be won.
constexpr std::size_t smallestJudged = std::size_t{16} << 10;

// What is stored within a piece is at least as long as a match can reach back, so that no match
// across it is lost, only those into it.
constexpr std::size_t smallestStored = longestDistance;

// Logs: what lies in their middle tells times, one in every other line or more, and a trial at the
// quickest level makes it 1/6 or smaller. Only such logs, and only long ones, came out larger than
// zlib makes them, and only at these levels.
constexpr std::size_t smallestLog = std::size_t{256} << 10;
constexpr std::size_t timesSpotSize = std::size_t{4} << 10;
constexpr std::size_t fewestTimes = 4; // so lines may be 1 KiB long
constexpr std::size_t logSpotSize = std::size_t{16} << 10;
constexpr std::size_t logRatio = 6;
constexpr int firstLogLevel = 5;
constexpr int lastLogLevel = 7;

// One level more is enough for a log that it makes smaller by that part, as far as a match reaches
// back. Where the longer search finds no more, the better choice of matches two levels up does.
constexpr std::size_t levelTrialSize = longestDistance;
constexpr std::size_t enoughGain = 50;

// Small files are compressed in spite of even bytes, unless they begin as these do.
constexpr auto compressedFormats = std::to_array<std::string_view>({
    "\x1f\x8b\x08", // gzip
    "BZh", // bzip2
    "\xfd\x37zXZ", // xz
    "\x28\xb5\x2f\xfd", // Zstandard
    "\x89PNG\r\n\x1a\n",
    "\xff\xd8\xff", // JPEG
    "OggS",
    "wOF2", // web fonts
});

std::string_view textOf(std::span<const std::byte> data)
{
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

bool isOfACompressedFormat(std::span<const std::byte> data)
{
    const std::string_view text = textOf(data);
    return std::ranges::any_of(
        compressedFormats, [&](std::string_view magic) { return text.starts_with(magic); });
}

// Of the counts of the byte values.
std::uint32_t sumOfSquares(std::span<const std::byte> bytes)
{
    std::array<std::uint16_t, 256> counts{};
    std::uint32_t squares = 0;
    for (const std::byte byte : bytes)
        squares += 2U * counts[std::to_integer<std::size_t>(byte)]++ + 1;
    return squares;
}

bool isEven(std::span<const std::byte> spot)
{
    return sumOfSquares(spot.first(glanceSize)) < glanceSquares && sumOfSquares(spot) < evenSquares;
}

bool hasEvenBytes(std::span<const std::byte> data)
{
    std::size_t exceptionsLeft = data.size() / spotDistance / spotsPerException;
    for (std::size_t at = 0; at + spotSize <= data.size(); at += spotDistance) {
        if (isEven(data.subspan(at, spotSize)))
            continue;
        if (exceptionsLeft-- == 0)
            return false;
    }
    return true;
}

std::uint64_t wordAt(const std::byte* at)
{
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

// Whether long matches could take the place of a part worth having of `data`, of 8 bytes or more.
bool hasLongRepeats(std::span<const std::byte> data)
{
    constexpr unsigned slotBits = 10; // some 128 places are compared within a match's reach
    constexpr std::uint64_t spreading = 0x9e3779b97f4a7c15; // the golden ratio's digits
    std::array<const std::byte*, std::size_t{1} << slotBits> lastPlaces{};
    const std::byte* const end = data.data() + data.size();
    const std::byte* const searchEnd = end - sizeof(std::uint64_t) + 1;
    std::size_t repeated = 0;
    for (const std::byte* at = data.data(); at < searchEnd;) {
        const auto left = static_cast<std::size_t>(searchEnd - at);
        const void* found = std::memchr(at, std::to_integer<int>(comparedValue), left);
        if (found == nullptr)
            break;
        const auto* const place = static_cast<const std::byte*>(found);
        const std::uint64_t word = wordAt(place);
        const std::byte* const former
            = std::exchange(lastPlaces[(word * spreading) >> (64 - slotBits)], place);
        const bool isRepeat = former != nullptr && place - former <= std::ptrdiff_t{longestDistance}
            && wordAt(former) == word;
        at = isRepeat ? std::mismatch(place, end, former).first : place + 1;
        if (isRepeat)
            repeated += static_cast<std::size_t>(at - place);
    }
    return repeated >= data.size() / bytesPerRepeated;
}

bool gains(Compressor& compressor, std::span<const std::byte> data)
{
    ByteBuffer scratch;
    const std::size_t size = compressor.compressSmaller(data, scratch);
    return size != 0 && size < data.size() - data.size() / bytesPerGained;
}

bool hasShortRepeats(std::span<const std::byte> data)
{
    Compressor quick(1);
    for (std::size_t at = 0; at + sampleSize <= data.size(); at += sampleDistance)
        if (gains(quick, data.subspan(at, sampleSize)))
            return true;
    return false;
}

bool hasRepeats(std::span<const std::byte> data)
{
    return hasLongRepeats(data) || hasShortRepeats(data);
}

// The first part of `data` that is worth storing, in whole spots; nothing, at the end of `data`, if
// there is none.
std::span<const std::byte> firstIncompressible(std::span<const std::byte> data)
{
    const auto isEvenAt = [&](std::size_t at) {
        return at + spotSize <= data.size() && isEven(data.subspan(at, spotSize));
    };
    std::size_t from = 0; // what lies before is not stored
    for (std::size_t at = 0; at < data.size(); at += spotDistance) {
        if (!isEvenAt(at))
            continue;
        std::size_t begin = at;
        while (begin >= from + spotSize && isEvenAt(begin - spotSize))
            begin -= spotSize;
        while (isEvenAt(at + spotDistance))
            at += spotDistance;
        std::size_t end = at + spotSize;
        while (isEvenAt(end))
            end += spotSize;
        const auto found = data.subspan(begin, end - begin);
        if (found.size() >= smallestStored && !hasRepeats(found))
            return found;
        from = end;
    }
    return data.last(0);
}

void appendStoredBlocks(std::span<const std::byte> input, bool isLast, ByteBuffer& output)
{
    do {
        const std::size_t size = std::min(input.size(), storedBlockSize);
        const bool isFinal = isLast && size == input.size();
        output.u8(isFinal ? 1 : 0);
        output.u16(size);
        output.u16(~size);
        output.append(input.first(size));
        input = input.subspan(size);
    } while (!input.empty());
}

bool isDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

bool startsWithTimeOfDay(std::string_view text)
{
    constexpr std::string_view form = "00:00:00";
    return std::ranges::equal(text.substr(0, form.size()), form,
        [](char byte, char wanted) { return wanted == '0' ? isDigit(byte) : byte == wanted; });
}

// Times of the day, and seconds or milliseconds since 1970.
std::size_t countTimes(std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t begin = at;
        while (at < text.size() && isDigit(text[at]))
            ++at;
        const std::size_t digits = at - begin;
        const bool isLongTime = (digits == 10 || digits == 13) && text[begin] == '1';
        if (isLongTime || (digits == 2 && startsWithTimeOfDay(text.substr(begin))))
            ++count;
    }
    return count;
}

bool tellsTimes(std::string_view text)
{
    const std::size_t times = countTimes(text);
    const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n'));
    return times >= fewestTimes && 2 * times >= lines;
}

bool isLogOfLikeLines(std::span<const std::byte> data)
{
    if (data.size() < smallestLog)
        return false;
    const std::span<const std::byte> spot = data.subspan(data.size() / 2, logSpotSize);
    if (!tellsTimes(textOf(spot.first(timesSpotSize))))
        return false;
    Compressor quick(1);
    ByteBuffer scratch;
    const std::size_t size = quick.compressSmaller(spot, scratch);
    return size != 0 && size < spot.size() / logRatio;
}

std::size_t compress(libdeflate_compressor* compressor, std::span<const std::byte> input,
    std::span<std::byte> output)
{
    return libdeflate_deflate_compress(
        compressor, input.data(), input.size(), output.data(), output.size());
}

} // namespace

bool looksIncompressible(std::span<const std::byte> data)
{
    if (data.size() >= smallestJudged)
        return hasEvenBytes(data) && !hasRepeats(data);
    return data.size() >= spotSize && isOfACompressedFormat(data) && hasEvenBytes(data);
}

bool compressesQuickly(std::span<const std::byte> data)
{
    Compressor quick(1);
    return gains(quick, data);
}

void Compressor::Free::operator()(libdeflate_compressor* compressor) const
{
    libdeflate_free_compressor(compressor);
}

Compressor::Compressor(int level)
    : _level(level)
{
    _with(0);
}

Compressor::~Compressor() = default;

libdeflate_compressor* Compressor::_with(int moreLevels)
{
    Library& library = _libraries.at(static_cast<std::size_t>(moreLevels));
    if (!library)
        library.reset(libdeflate_alloc_compressor(_level + moreLevels));
    if (!library)
        throw std::bad_alloc();
    return library.get();
}

libdeflate_compressor* Compressor::_compressorFor(std::span<const std::byte> input)
{
    if (_level < firstLogLevel || _level > lastLogLevel || !isLogOfLikeLines(input))
        return _with(0);
    const std::span<const std::byte> spot = input.subspan(input.size() / 2, levelTrialSize);
    ByteBuffer scratch;
    const std::span<std::byte> room = scratch.room(spot.size());
    const std::size_t size = compress(_with(0), spot, room);
    const bool isEnough = compress(_with(1), spot, room) <= size - size / enoughGain;
    return _with(isEnough ? 1 : 2);
}

std::size_t Compressor::compressSmaller(std::span<const std::byte> input, ByteBuffer& output)
{
    if (input.empty())
        return 0;
    const std::span<std::byte> room = output.room(input.size() - 1);
    const std::size_t size = compress(_compressorFor(input), input, room);
    output.keep(size);
    return size;
}

void Compressor::compressPiece(std::span<const std::byte> input, bool isLast, ByteBuffer& output)
{
    do {
        const std::span<const std::byte> stored = firstIncompressible(input);
        const auto before = static_cast<std::size_t>(stored.data() - input.data());
        if (before > 0 || stored.empty())
            _compressRun(input.first(before), isLast && stored.empty(), output);
        input = input.subspan(before + stored.size());
        if (!stored.empty())
            appendStoredBlocks(stored, isLast && input.empty(), output);
    } while (!input.empty());
}

void Compressor::_compressRun(std::span<const std::byte> input, bool isLast, ByteBuffer& output)
{
    libdeflate_compressor* const compressor = _compressorFor(input);
    const std::size_t bound = libdeflate_deflate_compress_bound(compressor, input.size());
    const std::span<std::byte> room = output.room(bound + continuationSize);
    const std::size_t size = compress(compressor, input, room.first(bound));
    output.keep(isLast ? size : makeContinuable(room, size));
}

void Compressor::restorePiece(ByteBuffer& piece, std::span<std::byte> data)
{
    piece.u16(3); // a stream has to end: with an empty block
    const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>
        decompressor(libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
    if (!decompressor)
        throw std::bad_alloc();
    if (libdeflate_deflate_decompress(
            decompressor.get(), piece.begin(), piece.size(), data.data(), data.size(), nullptr)
        != LIBDEFLATE_SUCCESS)
        throw std::runtime_error("a piece can't be restored");
}

std::uint64_t Compressor::worstSize(std::uint64_t size)
{
    // The library emits stored blocks of 5,000 bytes or more at worst, with 5 bytes of header each.
    // Every piece may add its continuation. A part that is stored adds a header for each 64 KiB and
    // the continuation of what lies before it, which 1 byte in 512 covers, too.
    return size + size / 512 + (size / pieceSize + 1) * 16;
}
