#include "platform/desktop/services/DesktopEntry.h"
#include "tests/fuzz/Fuzzing.h"

#include <algorithm>

using Fuzzing::require;

namespace
{

// The text cut at each zero.
std::vector<std::string> partsOf(std::string_view text)
{
    std::vector<std::string> parts{""};
    for (const char byte : text)
        if (byte == '\0')
            parts.emplace_back();
        else
            parts.back() += byte;
    return parts;
}

void requireWayBack(DesktopEntry entry, std::string_view value)
{
    entry.setValue("Name", value);
    require(entry.value("Name") == value, "what is set is what is read");
    const auto again = DesktopEntry::read(entry.text());
    require(again && again->value("Name") == value, "also from the file");
    require(again->text() == entry.text(), "which stays as it is");
}

} // namespace

// The first part of the input is a file; all of them are arguments and values.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = Fuzzing::textOf(data, size);
    const std::vector<std::string> parts = partsOf(input);
    const auto entry = DesktopEntry::read(parts.front());
    if (entry) {
        const std::string text = entry->text();
        require(text == parts.front() || text == parts.front() + "\n", "nothing set, no change");
        for (const std::string_view key : {"Name", "Exec", "", "Hidden"}) {
            (void)entry->value(key);
            (void)entry->isTrue(key);
            require(std::ranges::none_of(entry->list(key), &std::string::empty), "no empty parts");
        }
    }
    for (const std::string& part : parts)
        requireWayBack(entry.value_or(DesktopEntry()), part);

    (void)DesktopEntry::execArguments(input);
    const std::string exec = DesktopEntry::execValue(parts);
    require(DesktopEntry::execArguments(exec) == parts, "arguments come back from a command line");
    requireWayBack(DesktopEntry(), exec);
    return 0;
}
