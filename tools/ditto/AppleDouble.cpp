#include "tools/ditto/AppleDouble.h"

#include "tools/common/Compressor.h"

#include <cstdint>

#include <endian.h>

namespace
{

constexpr std::size_t finderOffset = 50;
constexpr std::size_t attributesOffset = finderOffset + AppleDouble::finderSize + 2;
constexpr std::size_t longestHead = 65536;
constexpr std::size_t longestName = 127;
constexpr std::size_t mostBytes = pieceSize; // it goes through the pipeline in one piece

std::size_t recordSize(std::string_view name)
{
    return (11 + name.size() + 1 + 3) / 4 * 4;
}

void replace(ByteBuffer& bytes, std::span<const std::byte> others)
{
    bytes.clear();
    bytes.append(others);
}

} // namespace

bool AppleDouble::add(std::string_view name, std::span<const std::byte> value)
{
    bool isAdded = _totalSize() + value.size() <= mostBytes;
    if (name == finderInformationName)
        isAdded = isAdded && value.size() == finderSize;
    if (isAdded && name == resourceForkName)
        replace(_resourceFork, value);
    else if (isAdded && name == finderInformationName)
        replace(_finderInformation, value);
    else
        isAdded = isAdded && _addAttribute(name, value);
    _hasAny = _hasAny || isAdded;
    return isAdded;
}

bool AppleDouble::_addAttribute(std::string_view name, std::span<const std::byte> value)
{
    const std::size_t size = recordSize(name);
    if (name.empty() || name.size() > longestName || _headSize + size > longestHead
        || _totalSize() + size + value.size() > mostBytes)
        return false;
    _headSize += size;
    _attributes.push_back({std::string(name), value.size()});
    _values.append(value);
    return true;
}

std::size_t AppleDouble::_totalSize() const
{
    return _headSize + _values.size() + _resourceFork.size();
}

ByteBuffer AppleDouble::bytes() const
{
    const std::size_t valuesEnd = _headSize + _values.size();
    ByteBuffer bytes;
    const auto u16
        = [&](std::size_t value) { bytes.u16(htobe16(static_cast<std::uint16_t>(value))); };
    const auto u32
        = [&](std::size_t value) { bytes.u32(htobe32(static_cast<std::uint32_t>(value))); };
    const auto zerosTo = [&](std::size_t size) { bytes.zeros(size - bytes.size()); };

    u32(magic);
    u32(version);
    bytes.text("Mac OS X        ");
    u16(2);
    for (const std::size_t number :
        {std::size_t{finderKind}, finderOffset, valuesEnd - finderOffset, //
            std::size_t{resourceForkKind}, valuesEnd, _resourceFork.size()})
        u32(number);
    bytes.append(_finderInformation);
    zerosTo(attributesOffset);

    bytes.text("ATTR");
    u32(0);
    u32(valuesEnd);
    u32(_headSize);
    u32(_values.size());
    bytes.zeros(12);
    u16(0);
    u16(_attributes.size());
    std::size_t valueOffset = _headSize;
    for (const Attribute& attribute : _attributes) {
        const std::size_t begin = bytes.size();
        u32(valueOffset);
        u32(attribute.size);
        u16(0);
        bytes.u8(attribute.name.size() + 1);
        bytes.text(attribute.name);
        zerosTo(begin + recordSize(attribute.name));
        valueOffset += attribute.size;
    }
    bytes.append(_values);
    bytes.append(_resourceFork);
    return bytes;
}
