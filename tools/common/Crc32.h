// CRC-32 as zip and gzip use it (ISO 3309, polynomial 0xEDB88320), computed in pieces on several
// threads and combined.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Crc32
{

std::uint32_t of(std::span<const std::byte> data);

// The checksum of A followed by B, from those of A and B and the length of B in bytes.
std::uint32_t combine(std::uint32_t first, std::uint32_t second, std::uint64_t secondLength);

} // namespace Crc32
