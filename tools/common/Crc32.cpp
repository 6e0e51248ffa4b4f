// Appending n bytes multiplies the checksum, a polynomial over GF(2), by x^(8n) modulo the CRC's
// polynomial; so two checksums combine by one such product and an exclusive or. The power is found
// by squaring: about 2 log2(n) products of 32 steps each.
#include "tools/common/Crc32.h"

#include <libdeflate.h>

namespace
{

constexpr std::uint32_t polynomial = 0xedb88320; // bit 31 is x^0, as in the checksum itself
constexpr std::uint32_t one = 0x80000000;

std::uint32_t product(std::uint32_t a, std::uint32_t b)
{
    std::uint32_t result = 0;
    for (; a != 0; a <<= 1) {
        if ((a & one) != 0)
            result ^= b;
        b = (b & 1) != 0 ? (b >> 1) ^ polynomial : b >> 1;
    }
    return result;
}

std::uint32_t powerOfX(std::uint64_t exponent)
{
    std::uint32_t result = one;
    std::uint32_t square = one >> 1; // x
    for (; exponent != 0; exponent >>= 1) {
        if ((exponent & 1) != 0)
            result = product(result, square);
        square = product(square, square);
    }
    return result;
}

} // namespace

namespace Crc32
{

std::uint32_t of(std::span<const std::byte> data)
{
    return libdeflate_crc32(0, data.data(), data.size());
}

std::uint32_t combine(std::uint32_t first, std::uint32_t second, std::uint64_t secondLength)
{
    return product(first, powerOfX(8 * secondLength)) ^ second;
}

} // namespace Crc32
