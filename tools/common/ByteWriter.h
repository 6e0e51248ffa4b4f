// Appends numbers in little-endian order, as zip and gzip want them.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

class ByteWriter
{
public:
    explicit ByteWriter(std::vector<std::byte>& bytes)
        : _bytes(bytes)
    {
    }

    void u8(std::uint64_t value) { number(value, 1); }
    void u16(std::uint64_t value) { number(value, 2); }
    void u32(std::uint64_t value) { number(value, 4); }
    void u64(std::uint64_t value) { number(value, 8); }
    void text(std::string_view text) { raw(std::as_bytes(std::span(text))); }
    void raw(std::span<const std::byte> bytes)
    {
        _bytes.insert(_bytes.end(), bytes.begin(), bytes.end());
    }

private:
    void number(std::uint64_t value, int size)
    {
        for (int index = 0; index < size; ++index)
            _bytes.push_back(static_cast<std::byte>(value >> (8 * index)));
    }

    std::vector<std::byte>& _bytes;
};

// Reads such numbers out of memory; reading past the end gives zeros and is remembered.
class ByteReader
{
public:
    explicit ByteReader(std::span<const std::byte> bytes)
        : _bytes(bytes)
    {
    }

    std::uint16_t u16() { return number<std::uint16_t>(); }
    std::uint32_t u32() { return number<std::uint32_t>(); }
    std::uint64_t u64() { return number<std::uint64_t>(); }
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
    template <class Number> Number number()
    {
        static_assert(std::endian::native == std::endian::little);
        Number value = 0;
        std::ranges::copy(raw(sizeof value), std::as_writable_bytes(std::span(&value, 1)).begin());
        return value;
    }

    std::span<const std::byte> _bytes;
    bool _isPastEnd = false;
};
