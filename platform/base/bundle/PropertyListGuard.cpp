// The binary form: "bplist00", objects, a table with the offset of each object, and a trailer of 32
// bytes with the width of offsets and references, the number of objects, the root and the table's
// place; all numbers big-endian. An object begins with a marker: the kind in its upper half, in the
// lower one the count of what follows, or 15 when the count is an integer object of its own.

#include "platform/base/bundle/PropertyListGuard.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace
{

constexpr std::string_view header = "bplist00";
constexpr std::size_t trailerSize = 32;
constexpr std::uint64_t mostCopiedBytes = 1 << 25; // what libplist may take for a file
constexpr std::uint64_t costOfNode = 64; // about what it takes besides the value

struct Object {
    bool isContainer = false;
    std::uint64_t count = 0; // of references or characters
    std::uint64_t contentsAt = 0;
    std::uint64_t keys = 0; // of these references, at the front
    std::uint64_t width = 1; // of a text's characters
    std::uint64_t cost = costOfNode; // of a copy
};

class BinaryList
{
public:
    explicit BinaryList(std::string_view bytes)
        : _bytes(bytes)
    {
    }

    bool isHarmless();

private:
    std::optional<std::uint64_t> _numberAt(std::uint64_t offset, std::uint64_t width) const;
    std::optional<Object> _objectAt(std::uint64_t offset) const;
    bool _hasZero(const Object& text) const;
    bool _readObjects();
    bool _follow(const Object& container);

    std::string_view _bytes;
    std::uint64_t _referenceWidth = 0;
    std::vector<Object> _objects;
    std::vector<bool> _isReferred;
    std::uint64_t _copiedBytes = 0;
};

std::optional<std::uint64_t> BinaryList::_numberAt(std::uint64_t offset, std::uint64_t width) const
{
    if (width == 0 || width > 8 || offset > _bytes.size() || width > _bytes.size() - offset)
        return std::nullopt;
    std::uint64_t number = 0;
    for (const char byte : _bytes.substr(offset, width))
        number = (number << 8) | static_cast<unsigned char>(byte);
    return number;
}

std::optional<Object> BinaryList::_objectAt(std::uint64_t offset) const
{
    const auto marker = _numberAt(offset, 1);
    if (!marker)
        return std::nullopt;
    const std::uint64_t kind = *marker >> 4;
    std::uint64_t count = *marker & 0xf;
    std::uint64_t contentsAt = offset + 1;
    if (kind >= 0x4 && count == 0xf) {
        const auto countMarker = _numberAt(contentsAt, 1);
        if (!countMarker || (*countMarker & 0xf) > 3)
            return std::nullopt;
        const std::uint64_t width = std::uint64_t{1} << (*countMarker & 0xf);
        const auto longCount = _numberAt(contentsAt + 1, width);
        if (!longCount || *longCount > _bytes.size())
            return std::nullopt;
        count = *longCount;
        contentsAt += 1 + width;
    }
    switch (kind) {
    case 0xa: // array
    case 0xc: // set
        return Object{.isContainer = true, .count = count, .contentsAt = contentsAt};
    case 0xd: // dictionary: keys, then values
        return Object{
            .isContainer = true, .count = 2 * count, .contentsAt = contentsAt, .keys = count};
    case 0x6: // text of two bytes a character, up to three in UTF-8
        return Object{
            .count = count, .contentsAt = contentsAt, .width = 2, .cost = costOfNode + 3 * count};
    default:
        return Object{.count = count, .contentsAt = contentsAt, .cost = costOfNode + count};
    }
}

bool BinaryList::_hasZero(const Object& text) const
{
    for (std::uint64_t index = 0; index < text.count; ++index)
        if (_numberAt(text.contentsAt + index * text.width, text.width) == 0)
            return true;
    return false;
}

bool BinaryList::_readObjects()
{
    const std::uint64_t trailer = _bytes.size() - trailerSize;
    const auto offsetWidth = _numberAt(trailer + 6, 1);
    _referenceWidth = *_numberAt(trailer + 7, 1);
    const std::uint64_t count = *_numberAt(trailer + 8, 8);
    const std::uint64_t root = *_numberAt(trailer + 16, 8);
    const std::uint64_t tableAt = *_numberAt(trailer + 24, 8);
    if (count > _bytes.size() || root >= count || tableAt > _bytes.size())
        return false;
    for (std::uint64_t index = 0; index < count; ++index) {
        const auto offset = _numberAt(tableAt + index * *offsetWidth, *offsetWidth);
        const auto object = offset ? _objectAt(*offset) : std::nullopt;
        if (!object)
            return false;
        _objects.push_back(*object);
    }
    _isReferred.resize(count);
    _isReferred[root] = true;
    return std::ranges::count_if(_objects, &Object::isContainer)
        <= static_cast<std::ptrdiff_t>(PropertyListGuard::mostContainers);
}

// False when the container holds one that is in another, too, or has a key that libplist fears.
bool BinaryList::_follow(const Object& container)
{
    for (std::uint64_t index = 0; index < container.count; ++index) {
        const auto target
            = _numberAt(container.contentsAt + index * _referenceWidth, _referenceWidth);
        if (!target || *target >= _objects.size())
            return false;
        const Object& object = _objects[*target];
        if (object.isContainer && _isReferred[*target])
            return false;
        _isReferred[*target] = true;
        _copiedBytes += object.cost;
        if (_copiedBytes > mostCopiedBytes || (index < container.keys && _hasZero(object)))
            return false;
    }
    return true;
}

bool BinaryList::isHarmless()
{
    if (_bytes.size() < header.size() + trailerSize || !_readObjects())
        return false;
    return std::ranges::all_of(
        _objects, [&](const Object& object) { return !object.isContainer || _follow(object); });
}

std::size_t countOf(std::string_view word, std::string_view text)
{
    std::size_t count = 0;
    for (auto at = text.find(word); at != text.npos; at = text.find(word, at + word.size()))
        ++count;
    return count;
}

} // namespace

bool PropertyListGuard::isBinary(std::string_view bytes)
{
    return bytes.starts_with(header);
}

bool PropertyListGuard::isHarmlessXML(std::string_view bytes)
{
    return countOf("<array", bytes) + countOf("<dict", bytes) <= mostContainers
        && bytes.find('\0') == std::string_view::npos;
}

bool PropertyListGuard::isHarmlessBinary(std::string_view bytes)
{
    return BinaryList(bytes).isHarmless();
}
