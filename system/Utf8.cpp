#include "system/Utf8.h"

#include <algorithm>

namespace
{

unsigned byteAt(std::string_view text, std::size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

} // namespace

namespace Utf8
{

std::size_t sequenceLength(std::string_view text)
{
    if (text.empty())
        return 0;
    const unsigned first = byteAt(text, 0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xc2 ? 0
        : first < 0xe0                      ? 2
        : first < 0xf0                      ? 3
        : first < 0xf5                      ? 4
                                            : 0;
    if (length == 0 || text.size() < length)
        return 0;
    for (std::size_t index = 1; index < length; ++index)
        if ((byteAt(text, index) & 0xc0) != 0x80)
            return 0;
    const unsigned second = byteAt(text, 1);
    const bool isOverlong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool isSurrogate = first == 0xed && second >= 0xa0;
    const bool isTooLarge = first == 0xf4 && second >= 0x90;
    return isOverlong || isSurrogate || isTooLarge ? 0 : length;
}

bool isAscii(std::string_view text)
{
    return std::ranges::none_of(text, [](char c) { return (c & 0x80) != 0; });
}

bool isValid(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string_view shortened(std::string_view text, std::size_t size)
{
    if (text.size() <= size)
        return text;
    std::size_t kept = 0;
    while (kept < text.size()) {
        const std::size_t next = kept + std::max<std::size_t>(1, sequenceLength(text.substr(kept)));
        if (next > size)
            break;
        kept = next;
    }
    return text.substr(0, kept);
}

} // namespace Utf8
