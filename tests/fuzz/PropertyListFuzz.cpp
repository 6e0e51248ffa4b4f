#include "platform/base/bundle/PropertyList.h"
#include "shared/Library/Extras/ValueCoding.h"
#include "tests/fuzz/Fuzzing.h"

using Fuzzing::require;
using PropertyList::Dictionary;

namespace
{

// What can be written is read the same. Much that is read cannot be written.
void requireWayBack(const Dictionary& dictionary)
{
    const auto xml = PropertyList::xmlOf(dictionary);
    if (!xml)
        return;
    const auto again = PropertyList::valueOf(*xml);
    require(again && std::get<Dictionary>(*again) == dictionary, "what is written can be read");
}

// Fonts are refused with one exception; any other ends the program.
void readFont(const PropertyList::Value& value)
try {
    if (const auto* data = std::get_if<PropertyList::Data>(&value))
        (void)ValueCoding::fontOf(QByteArray::fromStdString(data->bytes));
} catch (const UnarchivingFailure&) {
}

} // namespace

void Fuzzing::test(std::string_view input)
{
    const auto value = PropertyList::valueOf(input);
    const auto* dictionary = value ? std::get_if<Dictionary>(&*value) : nullptr;
    if (!dictionary)
        return;
    requireWayBack(*dictionary);
    for (const auto& [key, element] : *dictionary) {
        (void)PropertyList::intValue(element);
        readFont(element);
    }
}
