// Reads numbers in little-endian order out of memory; reading past the end gives zeros and is
// remembered.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

class ByteReader
{
public:
    explicit ByteReader(std::span<const std::byte> bytes)
        : _bytes(bytes)
    {
    }

    std::uint16_t u16() { return _number<std::uint16_t>(); }
    std::uint32_t u32() { return _number<std::uint32_t>(); }
    std::uint64_t u64() { return _number<std::uint64_t>(); }
    void skip(std::size_t size) { (void)raw(size); }
    std::span<const std::byte> raw(std::size_t size)
    {
        if (size > _bytes.size()) {
            _isPastEnd = true;
            size = 0;
        }
        const std::span<const std::byte> taken = _bytes.first(size);
        _bytes = _bytes.subspan(size);
        return taken;
    }
    [[nodiscard]] std::size_t remaining() const { return _bytes.size(); }
    [[nodiscard]] bool isPastEnd() const { return _isPastEnd; }

private:
    // In one load: archives of many entries are read once for each item that is added.
    template <class Number> Number _number()
    {
        static_assert(std::endian::native == std::endian::little);
        Number value = 0;
        std::ranges::copy(raw(sizeof value), std::as_writable_bytes(std::span(&value, 1)).begin());
        return value;
    }

    std::span<const std::byte> _bytes;
    bool _isPastEnd = false;
};
