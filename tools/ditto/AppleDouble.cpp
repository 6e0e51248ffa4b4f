#include "tools/ditto/AppleDouble.h"

#include "tools/common/Compressor.h"

#include <cstdint>

namespace
{

constexpr std::size_t finderOffset = 50;
constexpr std::size_t finderSize = 32;
constexpr std::size_t attributesOffset = finderOffset + finderSize + 2;
constexpr std::size_t longestHead = 65536;
constexpr std::size_t longestName = 127;
constexpr std::size_t mostBytes = pieceSize; // it goes through the pipeline in one piece

std::size_t recordSize(std::string_view name)
{
    return (11 + name.size() + 1 + 3) / 4 * 4;
}

void append(std::vector<std::byte>& bytes, std::span<const std::byte> more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void appendNumber(std::vector<std::byte>& bytes, std::size_t value, int size)
{
    while (size-- > 0)
        bytes.push_back(static_cast<std::byte>(value >> (8 * size)));
}

} // namespace

bool AppleDouble::add(std::string_view name, std::span<const std::byte> value)
{
    bool isAdded = totalSize() + value.size() <= mostBytes;
    if (isAdded && name == "com.apple.ResourceFork")
        _resourceFork.assign(value.begin(), value.end());
    else if (isAdded && name == "com.apple.FinderInfo" && value.size() == finderSize)
        _finderInformation.assign(value.begin(), value.end());
    else
        isAdded = isAdded && addAttribute(name, value);
    _hasAny = _hasAny || isAdded;
    return isAdded;
}

bool AppleDouble::addAttribute(std::string_view name, std::span<const std::byte> value)
{
    const std::size_t size = recordSize(name);
    if (name.empty() || name.size() > longestName || _headSize + size > longestHead
        || totalSize() + size + value.size() > mostBytes)
        return false;
    _headSize += size;
    _attributes.push_back({std::string(name), value.size()});
    append(_values, value);
    return true;
}

std::size_t AppleDouble::totalSize() const
{
    return _headSize + _values.size() + _resourceFork.size();
}

std::vector<std::byte> AppleDouble::bytes() const
{
    const std::size_t valuesEnd = _headSize + _values.size();
    std::vector<std::byte> bytes;
    const auto u16 = [&](std::size_t value) { appendNumber(bytes, value, 2); };
    const auto u32 = [&](std::size_t value) { appendNumber(bytes, value, 4); };
    const auto text
        = [&](std::string_view words) { append(bytes, std::as_bytes(std::span(words))); };

    u32(0x00051607);
    u32(0x00020000);
    text("Mac OS X        ");
    u16(2);
    for (const std::size_t number : {std::size_t{9}, finderOffset, valuesEnd - finderOffset, //
             std::size_t{2}, valuesEnd, _resourceFork.size()})
        u32(number);
    append(bytes, _finderInformation);
    bytes.resize(attributesOffset);

    text("ATTR");
    u32(0);
    u32(valuesEnd);
    u32(_headSize);
    u32(_values.size());
    bytes.resize(bytes.size() + 12);
    u16(0);
    u16(_attributes.size());
    std::size_t valueOffset = _headSize;
    for (const Attribute& attribute : _attributes) {
        const std::size_t begin = bytes.size();
        u32(valueOffset);
        u32(attribute.size);
        u16(0);
        appendNumber(bytes, attribute.name.size() + 1, 1);
        text(attribute.name);
        bytes.resize(begin + recordSize(attribute.name));
        valueOffset += attribute.size;
    }
    append(bytes, _values);
    append(bytes, _resourceFork);
    return bytes;
}
