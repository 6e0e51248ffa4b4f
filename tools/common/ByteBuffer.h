// Bytes that grow at their end, numbers in little-endian order, as zip and gzip want them. Unlike a
// vector it can grow by bytes that somebody else fills, without zeros being written first.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

class ByteBuffer
{
public:
    [[nodiscard]] std::size_t size() const { return _size; }
    [[nodiscard]] std::byte* begin() { return _bytes.get(); }
    [[nodiscard]] std::byte* end() { return _bytes.get() + _size; }
    [[nodiscard]] const std::byte* begin() const { return _bytes.get(); }
    [[nodiscard]] const std::byte* end() const { return _bytes.get() + _size; }

    void u8(std::uint64_t value) { _number(value, 1); }
    void u16(std::uint64_t value) { _number(value, 2); }
    void u32(std::uint64_t value) { _number(value, 4); }
    void u64(std::uint64_t value) { _number(value, 8); }
    void text(std::string_view text) { append(std::as_bytes(std::span(text))); }
    void zeros(std::size_t size)
    {
        std::fill_n(room(size).data(), size, std::byte{0});
        keep(size);
    }
    void append(std::span<const std::byte> bytes)
    {
        // By pointers: the library copies between spans byte by byte.
        std::copy_n(bytes.data(), bytes.size(), room(bytes.size()).data());
        keep(bytes.size());
    }

    // Room behind the bytes, valid until the next call; what is kept of it becomes part of them.
    [[nodiscard]] std::span<std::byte> room(std::size_t size)
    {
        if (size > _capacity - _size) [[unlikely]]
            _growTo(std::max(_size + size, 2 * _capacity));
        return {end(), size};
    }
    void keep(std::size_t size) { _size += size; }

    // The memory stays, for the next bytes.
    void shrinkTo(std::size_t size) { _size = size; }
    void clear() { shrinkTo(0); }

private:
    void _growTo(std::size_t capacity)
    {
        auto grown = std::make_unique_for_overwrite<std::byte[]>(capacity);
        std::copy_n(_bytes.get(), _size, grown.get());
        _bytes = std::move(grown);
        _capacity = capacity;
    }
    void _number(std::uint64_t value, std::size_t size)
    {
        static_assert(std::endian::native == std::endian::little);
        append(std::as_bytes(std::span(&value, 1)).first(size));
    }

    std::unique_ptr<std::byte[]> _bytes;
    std::size_t _size = 0;
    std::size_t _capacity = 0;
};
