#include "tools/ditto/ServerForks.h"

#include "tools/ditto/AppleDouble.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace
{

using Bytes = std::span<const std::byte>;

// A part of an attribute's value.
struct Part {
    Bytes bytes;
    bool isAll; // the rest says nothing
};

std::uint32_t number(Bytes bytes, std::size_t offset, std::size_t size = 4)
{
    std::uint32_t value = 0;
    for (const std::byte byte : bytes.subspan(offset, size))
        value = value << 8 | std::to_integer<std::uint32_t>(byte);
    return value;
}

std::optional<Part> whole(Bytes value)
{
    return Part{value, true};
}

std::optional<Part> beforeNul(Bytes value)
{
    if (value.empty() || value.back() != std::byte{0})
        return std::nullopt;
    return Part{value.first(value.size() - 1), true};
}

// The version is 00 00 01 00, but for one server that writes 00 01 00 00; the file's number in the
// reserved bytes is not the file's own.
std::optional<Part> ofAfpInfo(Bytes value)
{
    constexpr std::size_t size = 60;
    constexpr std::size_t begin = 16;
    constexpr std::size_t end = begin + AppleDouble::finderSize;
    const bool hasSize = value.size() == size || (value.size() == size + 1 && beforeNul(value));
    if (!hasSize || number(value, 0) != 0x41465000)
        return std::nullopt;
    const std::uint32_t backup = number(value, 12);
    const bool wasBackedUp = backup != 0 && backup != 0x80000000 && backup != 0x00000080;
    const bool isRestEmpty = std::ranges::all_of(
        value.subspan(end), [](std::byte byte) { return byte == std::byte{}; });
    return Part{value.subspan(begin, AppleDouble::finderSize), isRestEmpty && !wasBackedUp};
}

std::optional<Part> ofMetadata(Bytes value)
{
    constexpr std::size_t headSize = 26;
    constexpr std::size_t entrySize = 12;
    if (value.size() < headSize || number(value, 0) != AppleDouble::magic
        || number(value, 4) != AppleDouble::version)
        return std::nullopt;
    const std::size_t count = number(value, 24, 2);
    if ((value.size() - headSize) / entrySize < count)
        return std::nullopt;
    for (std::size_t entry = headSize; entry < headSize + count * entrySize; entry += entrySize) {
        const std::size_t offset = number(value, entry + 4);
        if (number(value, entry) == AppleDouble::finderKind
            && number(value, entry + 8) == AppleDouble::finderSize && offset <= value.size()
            && value.size() - offset >= AppleDouble::finderSize)
            return Part{value.subspan(offset, AppleDouble::finderSize), false};
    }
    return std::nullopt;
}

struct ServerFork {
    std::string_view name;
    std::string_view macName;
    std::optional<Part> (*part)(Bytes value);
};
constexpr std::array<ServerFork, 4> serverForks = {{
    {"DosStream.AFP_Resource:$DATA", AppleDouble::resourceForkName, beforeNul},
    {"DosStream.AFP_AfpInfo:$DATA", AppleDouble::finderInformationName, ofAfpInfo},
    {"org.netatalk.ResourceFork", AppleDouble::resourceForkName, whole},
    {"org.netatalk.Metadata", AppleDouble::finderInformationName, ofMetadata},
}};

} // namespace

namespace ServerForks
{

bool concern(std::string_view name)
{
    return std::ranges::any_of(serverForks,
        [&](const ServerFork& fork) { return name == fork.name || name == fork.macName; });
}

void translate(Attributes& attributes)
{
    for (const ServerFork& fork : serverForks) {
        const auto attribute = attributes.find(fork.name);
        if (attribute == attributes.end())
            continue;
        const std::optional<Part> part = fork.part(attribute->second);
        if (!part)
            continue;
        const auto mac
            = attributes
                  .try_emplace(std::string(fork.macName), part->bytes.begin(), part->bytes.end())
                  .first;
        if (part->isAll && std::ranges::equal(mac->second, part->bytes))
            attributes.erase(attribute);
    }
}

} // namespace ServerForks
