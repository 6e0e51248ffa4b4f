#include "tools/common/DeflateJoin.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace
{

constexpr unsigned maxCodeLength = 15;
constexpr unsigned endOfBlock = 256;
constexpr unsigned literalSymbols = 288;
constexpr unsigned distanceSymbols = 32;
constexpr unsigned precodeSymbols = 19;

[[noreturn]] void badStream()
{
    throw std::runtime_error("the compressor's output is not a deflate stream");
}

class BitReader
{
public:
    explicit BitReader(std::span<const std::byte> stream)
        : _stream(stream)
    {
    }

    [[nodiscard]] std::size_t position() const { return 8 * _next - _count; }

    // Makes at least 56 bits available, and all 64 for peeking; past the end they read as zeros.
    void refill()
    {
        _bits |= _wordAt(_next) << _count;
        const unsigned bytes = (63 - _count) / 8;
        _next += bytes;
        _count += 8 * bytes;
    }

    [[nodiscard]] unsigned peek(unsigned count) const
    {
        return static_cast<unsigned>(_bits & ((std::uint64_t{1} << count) - 1));
    }
    void skip(unsigned count)
    {
        _bits >>= count;
        _count -= count;
    }
    unsigned take(unsigned count)
    {
        const unsigned value = peek(count);
        skip(count);
        return value;
    }

    void seekToByte(std::size_t byte)
    {
        _bits = 0;
        _count = 0;
        _next = byte;
    }

private:
    [[nodiscard]] std::uint64_t _wordAt(std::size_t at) const
    {
        static_assert(std::endian::native == std::endian::little);
        std::uint64_t word = 0;
        if (at + sizeof word <= _stream.size()) [[likely]] {
            std::memcpy(&word, _stream.data() + at, sizeof word);
        } else {
            if (at > _stream.size() + 2 * sizeof word)
                badStream();
            if (at < _stream.size())
                std::memcpy(&word, _stream.data() + at, _stream.size() - at);
        }
        return word;
    }

    std::span<const std::byte> _stream;
    std::uint64_t _bits = 0;
    unsigned _count = 0;
    std::size_t _next = 0;
};

// The code lengths of one alphabet and the canonical code that follows from them.
template <unsigned symbolCount> class HuffmanCode
{
public:
    explicit HuffmanCode(std::span<const std::uint8_t> lengths)
    {
        std::memcpy(_lengths.data(), lengths.data(), lengths.size());
        for (const std::uint8_t length : _lengths)
            ++_counts[length];
        _counts[0] = 0;
        std::array<unsigned, maxCodeLength + 2> sortedAt{};
        std::array<unsigned, maxCodeLength + 1> next{};
        for (unsigned length = 1; length <= maxCodeLength; ++length) {
            next[length] = (next[length - 1] + _counts[length - 1]) << 1;
            sortedAt[length + 1] = sortedAt[length] + _counts[length];
        }
        for (unsigned symbol = 0; symbol < symbolCount; ++symbol) {
            const unsigned length = _lengths[symbol];
            if (length == 0)
                continue;
            _codes[symbol] = static_cast<std::uint16_t>(next[length]++);
            _sorted[sortedAt[length]++] = static_cast<std::uint16_t>(symbol);
        }
    }

    [[nodiscard]] unsigned length(unsigned symbol) const { return _lengths[symbol]; }
    // The code, its first bit highest.
    [[nodiscard]] unsigned code(unsigned symbol) const { return _codes[symbol]; }

    // Puts `valueOf(symbol)` in each entry of `table` whose index, as bits read from the stream,
    // begins with the symbol's code, or begins it.
    template <class Value, class ValueOf>
    void fillTable(std::span<Value> table, const ValueOf& valueOf) const
    {
        const auto bits = static_cast<unsigned>(std::bit_width(table.size() - 1));
        for (unsigned symbol = 0; symbol < symbolCount; ++symbol) {
            const unsigned length = _lengths[symbol];
            if (length == 0)
                continue;
            const unsigned shown = length < bits ? length : bits;
            const std::size_t begin = _reversed(_codes[symbol], length) & ((1U << shown) - 1);
            const Value value = valueOf(symbol);
            for (std::size_t index = begin; index < table.size(); index += std::size_t{1} << shown)
                table[index] = value;
        }
    }

    // Bit by bit, for the rare codes that a table is too short for; at least 15 bits are available.
    [[nodiscard]] unsigned decode(const BitReader& reader) const
    {
        const unsigned bits = reader.peek(maxCodeLength);
        unsigned code = 0;
        unsigned first = 0;
        unsigned index = 0;
        for (unsigned length = 1; length <= maxCodeLength; ++length) {
            code |= (bits >> (length - 1)) & 1;
            if (code < first + _counts[length])
                return _sorted[index + (code - first)];
            index += _counts[length];
            first = (first + _counts[length]) << 1;
            code <<= 1;
        }
        badStream();
    }

private:
    static unsigned _reversed(unsigned code, unsigned length)
    {
        code = (code & 0x5555) << 1 | (code >> 1 & 0x5555);
        code = (code & 0x3333) << 2 | (code >> 2 & 0x3333);
        code = (code & 0x0f0f) << 4 | (code >> 4 & 0x0f0f);
        code = (code & 0x00ff) << 8 | code >> 8;
        return code >> (16 - length);
    }

    std::array<std::uint8_t, symbolCount> _lengths{};
    std::array<std::uint16_t, symbolCount> _codes{};
    std::array<std::uint16_t, symbolCount> _sorted{}; // by length, then by symbol
    std::array<unsigned, maxCodeLength + 1> _counts{};
};

using LiteralCode = HuffmanCode<literalSymbols>;
using DistanceCode = HuffmanCode<distanceSymbols>;

struct BlockCodes {
    LiteralCode literals;
    DistanceCode distances;
};

unsigned lengthExtraBits(unsigned symbol)
{
    if (symbol < 265 || symbol == 285)
        return 0;
    return (symbol - 261) / 4;
}

unsigned distanceExtraBits(unsigned symbol)
{
    return symbol < 4 ? 0 : symbol / 2 - 1;
}

BlockCodes fixedCodes()
{
    std::array<std::uint8_t, literalSymbols> lengths{};
    for (unsigned symbol = 0; symbol < literalSymbols; ++symbol)
        lengths[symbol] = symbol < 144 ? 8 : symbol < 256 ? 9 : symbol < 280 ? 7 : 8;
    std::array<std::uint8_t, distanceSymbols> distances{};
    distances.fill(5);
    return {LiteralCode(lengths), DistanceCode(distances)};
}

BlockCodes readDynamicCodes(BitReader& reader)
{
    static constexpr std::array<std::uint8_t, precodeSymbols> order
        = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
    reader.refill();
    const unsigned literalCount = 257 + reader.take(5);
    const unsigned distanceCount = 1 + reader.take(5);
    const unsigned precodeCount = 4 + reader.take(4);
    std::array<std::uint8_t, precodeSymbols> precodeLengths{};
    for (unsigned index = 0; index < precodeCount; ++index) {
        reader.refill();
        precodeLengths[order[index]] = static_cast<std::uint8_t>(reader.take(3));
    }

    const HuffmanCode<precodeSymbols> precode(precodeLengths);
    std::array<std::uint8_t, 128> symbols{};
    precode.fillTable<std::uint8_t>(
        symbols, [](unsigned symbol) { return static_cast<std::uint8_t>(symbol); });

    std::array<std::uint8_t, literalSymbols + distanceSymbols> lengths{};
    const unsigned total = literalCount + distanceCount;
    for (unsigned filled = 0; filled < total;) {
        reader.refill();
        const unsigned symbol = symbols[reader.peek(7)];
        if (precode.length(symbol) == 0)
            badStream();
        reader.skip(precode.length(symbol));
        if (symbol < 16) {
            lengths[filled++] = static_cast<std::uint8_t>(symbol);
            continue;
        }
        if (symbol == 16 && filled == 0)
            badStream();
        const std::uint8_t repeated = symbol == 16 ? lengths[filled - 1] : std::uint8_t{0};
        const unsigned times = symbol == 16 ? 3 + reader.take(2)
            : symbol == 17                  ? 3 + reader.take(3)
                                            : 11 + reader.take(7);
        if (filled + times > total)
            badStream();
        std::memset(lengths.data() + filled, repeated, times);
        filled += times;
    }
    const std::span<const std::uint8_t> all(lengths);
    return {LiteralCode(all.first(literalCount)),
        DistanceCode(all.subspan(literalCount, distanceCount))};
}

// The steps of a walk over one block, for each value of the next `indexBits` bits: how many bits to
// go on, and whether a distance comes then. Literals and distances are one table of two halves, so
// that the walk is a chain of look-ups without a branch to mispredict. 10 bits hold nearly all
// codes met in practice, and the table fits the first-level cache.
class StepTable
{
public:
    static constexpr unsigned indexBits = 10;
    static constexpr std::size_t half = std::size_t{1} << indexBits;

    // One step: bits to skip in the low 6 bits, then flags.
    using Step = std::uint16_t;
    static constexpr Step bitsMask = 0x3f;
    static constexpr Step toDistance = half;
    static constexpr Step isEnd = 0x40;
    static constexpr Step isLong = 0x80; // the code is longer than the index
    static constexpr Step isInvalid = 0x100;
    static constexpr Step stops = isEnd | isLong | isInvalid;
    static_assert((toDistance & (stops | bitsMask)) == 0);

    explicit StepTable(const BlockCodes& codes)
    {
        _steps.fill(isInvalid);
        const std::span<Step> all(_steps);
        codes.literals.fillTable(all.first(half), [&](unsigned symbol) {
            return codes.literals.length(symbol) > indexBits ? isLong
                                                             : literalStep(codes.literals, symbol);
        });
        codes.distances.fillTable(all.last(half), [&](unsigned symbol) {
            return codes.distances.length(symbol) > indexBits
                ? isLong
                : distanceStep(codes.distances, symbol);
        });
        _joinLiterals();
    }

    // The steps from a literal or length; those from a distance come toDistance behind them.
    [[nodiscard]] const Step* data() const { return _steps.data(); }

    static Step literalStep(const LiteralCode& code, unsigned symbol)
    {
        if (symbol < endOfBlock)
            return static_cast<Step>(code.length(symbol));
        if (symbol == endOfBlock)
            return static_cast<Step>(code.length(symbol) | isEnd);
        return static_cast<Step>((code.length(symbol) + lengthExtraBits(symbol)) | toDistance);
    }
    static Step distanceStep(const DistanceCode& code, unsigned symbol)
    {
        return static_cast<Step>(code.length(symbol) + distanceExtraBits(symbol));
    }

private:
    // Makes one step of a literal and the literals behind it, as far as the index tells them. From
    // the top down, because what follows has a smaller index and must still be a single step.
    void _joinLiterals()
    {
        for (std::size_t index = half; index-- > 0;) {
            unsigned bits = _steps[index];
            while (bits < indexBits) {
                const Step following = _steps[index >> bits];
                if (following > indexBits - bits) // not a literal, or not all of it is known
                    break;
                bits += following;
            }
            _steps[index] = static_cast<Step>(bits);
        }
    }

    std::array<Step, 2 * half> _steps{};
};

// Leaves the reader behind the block's end-of-block code. Each step is looked up as soon as the one
// before has been taken, so that the refill happens while the look-up is under way.
void walkBlock(BitReader& stream, const BlockCodes& codes)
{
    const StepTable table(codes);
    const StepTable::Step* steps = table.data();
    BitReader reader = stream; // a copy, for the compiler to keep in registers
    reader.refill();
    StepTable::Step step = steps[reader.peek(StepTable::indexBits)];
    for (;;) {
        reader.refill(); // two steps take 15 + 5 and 15 + 13 bits at most, and leave enough to peek
        for (int count = 0; count < 2; ++count) {
            if ((step & StepTable::stops) != 0) [[unlikely]] {
                if ((step & StepTable::isInvalid) != 0)
                    badStream();
                if ((step & StepTable::isLong) != 0)
                    step = steps == table.data()
                        ? StepTable::literalStep(codes.literals, codes.literals.decode(reader))
                        : StepTable::distanceStep(codes.distances, codes.distances.decode(reader));
                if ((step & StepTable::isEnd) != 0) {
                    reader.skip(step & StepTable::bitsMask);
                    stream = reader;
                    return;
                }
            }
            reader.skip(step & StepTable::bitsMask);
            steps = table.data() + (step & StepTable::toDistance);
            step = steps[reader.peek(StepTable::indexBits)];
        }
    }
}

void skipStoredBlock(BitReader& reader)
{
    const std::size_t lengthAt = (reader.position() + 7) / 8;
    reader.seekToByte(lengthAt);
    reader.refill();
    const unsigned length = reader.take(16);
    reader.seekToByte(lengthAt + 4 + length);
}

// Where the end-of-block code ends, given that it is the stream's last and only zeros pad it: its
// last set bit is the stream's last set bit.
std::size_t endBySetBit(std::span<const std::byte> stream, unsigned endCode)
{
    std::size_t last = stream.size();
    while (last > 0 && stream[last - 1] == std::byte{0})
        --last;
    if (last == 0)
        badStream();
    const auto width = std::bit_width(std::to_integer<unsigned>(stream[last - 1]));
    const std::size_t end = 8 * (last - 1) + static_cast<std::size_t>(width)
        + static_cast<std::size_t>(std::countr_zero(endCode));
    if (end > 8 * stream.size())
        badStream();
    return end;
}

} // namespace

DeflateTail findDeflateTail(std::span<const std::byte> stream)
{
    BitReader reader(stream);
    for (;;) {
        const std::size_t blockBit = reader.position();
        reader.refill();
        const bool isLast = reader.take(1) == 1;
        const unsigned type = reader.take(2);
        if (type == 0) {
            skipStoredBlock(reader);
        } else if (type == 3) {
            badStream();
        } else {
            const BlockCodes codes = type == 1 ? fixedCodes() : readDynamicCodes(reader);
            const unsigned endCode = codes.literals.code(endOfBlock);
            if (isLast && endCode != 0)
                return {blockBit, endBySetBit(stream, endCode)};
            walkBlock(reader, codes);
        }
        if (reader.position() > 8 * stream.size())
            badStream();
        if (isLast)
            return {blockBit, reader.position()};
    }
}

std::size_t makeContinuable(std::span<std::byte> buffer, std::size_t size)
{
    const DeflateTail tail = findDeflateTail(buffer.first(size));
    buffer[tail.lastBlockBit / 8] &= ~(std::byte{1} << (tail.lastBlockBit % 8));
    std::size_t end = (tail.endBit + 3 + 7) / 8; // the 3 header bits of a stored block are zeros
    if (end > size)
        buffer[size] = std::byte{0};
    static constexpr std::array lengths
        = {std::byte{0x00}, std::byte{0x00}, std::byte{0xff}, std::byte{0xff}};
    for (const std::byte byte : lengths)
        buffer[end++] = byte;
    return end;
}
