#include "tests/fuzz/Fuzzing.h"
#include "tools/ditto/AppleDouble.h"
#include "tools/ditto/ServerForks.h"

#include <algorithm>
#include <span>

using Fuzzing::require;

namespace
{

// In the order in which they count.
constexpr std::string_view names[] = {AppleDouble::resourceForkName,
    AppleDouble::finderInformationName, "DosStream.AFP_Resource:$DATA",
    "DosStream.AFP_AfpInfo:$DATA", "org.netatalk.ResourceFork", "org.netatalk.Metadata"};

// Each value begins with the number of its name and its size.
ServerForks::Attributes attributesOf(std::span<const std::byte> bytes)
{
    ServerForks::Attributes attributes;
    while (bytes.size() >= 2) {
        const std::string_view name
            = names[std::to_integer<std::size_t>(bytes[0]) % std::size(names)];
        const auto value
            = bytes.subspan(2, std::min(std::to_integer<std::size_t>(bytes[1]), bytes.size() - 2));
        attributes[std::string(name)].assign(value.begin(), value.end());
        bytes = bytes.subspan(2 + value.size());
    }
    return attributes;
}

} // namespace

void Fuzzing::test(std::string_view input)
{
    const auto before = attributesOf(std::as_bytes(std::span(input)));
    auto after = before;
    ServerForks::translate(after);
    for (const auto& [name, value] : before) {
        const bool isMacs = name == names[0] || name == names[1];
        require(!isMacs || after.at(name) == value, "the Mac's own attributes stay as they are");
        require(after.contains(name) || after.contains(names[0]) || after.contains(names[1]),
            "what goes is in one of the Mac's");
    }
    auto again = after;
    ServerForks::translate(again);
    require(again == after, "there is nothing left to translate");

    AppleDouble file;
    for (const auto& [name, value] : after)
        (void)file.add(name, value);
    (void)file.bytes();
}
