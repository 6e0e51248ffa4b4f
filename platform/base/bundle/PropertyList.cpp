#include "platform/base/bundle/PropertyList.h"

#include "platform/base/bundle/PropertyListGuard.h"
#include "platform/base/bundle/PropertyListNodes.h"
#include "system/FileBytes.h"
#include "system/TextNumber.h"

#include <utility>

namespace fs = std::filesystem;

namespace
{

using namespace PropertyList;
using namespace PropertyListNodes;
using std::chrono::microseconds;
using std::chrono::seconds;

constexpr int deepest = 64; // levels; nothing we read has more than a few

std::optional<Value> valueOfNode(plist_t node, int levels);

std::optional<Value> arrayOf(plist_t node, int levels)
{
    void* cursor = nullptr;
    plist_array_new_iter(node, &cursor);
    const Memory<void> owner(cursor);
    Array array;
    while (true) {
        plist_t item = nullptr;
        plist_array_next_item(node, cursor, &item);
        if (!item)
            return array;
        auto value = valueOfNode(item, levels - 1);
        if (!value)
            return std::nullopt;
        array.push_back(std::move(*value));
    }
}

std::optional<Value> dictionaryOf(plist_t node, int levels)
{
    void* cursor = nullptr;
    plist_dict_new_iter(node, &cursor);
    const Memory<void> owner(cursor);
    Dictionary dictionary;
    while (true) {
        char* text = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, cursor, &text, &item);
        const Memory<char> key(text);
        if (!key && !item)
            return dictionary;
        auto value = key && item ? valueOfNode(item, levels - 1) : std::nullopt;
        if (!value)
            return std::nullopt;
        dictionary.insert_or_assign(key.get(), std::move(*value));
    }
}

Value integerOf(plist_t node)
{
    std::uint64_t number = 0;
    plist_get_uint_val(node, &number);
    return static_cast<std::int64_t>(number);
}

Value dateOf(plist_t node)
{
    std::int32_t wholeSeconds = 0;
    std::int32_t rest = 0;
    plist_get_date_val(node, &wholeSeconds, &rest);
    return Date(referenceDate + seconds(wholeSeconds) + microseconds(rest));
}

// The bytes of a text or of data; libplist gives no place for those that are empty.
std::string bytesOf(plist_t node, const char* (*place)(plist_t, std::uint64_t*))
{
    std::uint64_t size = 0;
    const char* bytes = place(node, &size);
    return bytes ? std::string(bytes, size) : std::string();
}

std::optional<Value> valueOfNode(plist_t node, int levels)
{
    if (levels == 0)
        return std::nullopt;
    double real = 0;
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
        return plist_bool_val_is_true(node) != 0;
    case PLIST_UINT:
        return integerOf(node);
    case PLIST_REAL:
        plist_get_real_val(node, &real);
        return real;
    case PLIST_STRING:
        return bytesOf(node, plist_get_string_ptr);
    case PLIST_DATA:
        return Data{bytesOf(node, plist_get_data_ptr)};
    case PLIST_DATE:
        return dateOf(node);
    case PLIST_ARRAY:
        return arrayOf(node, levels);
    case PLIST_DICT:
        return dictionaryOf(node, levels);
    default: // what only archives of objects have
        return std::nullopt;
    }
}

} // namespace

std::optional<Value> PropertyList::valueOf(std::string_view bytes)
{
    const bool isBinary = PropertyListGuard::isBinary(bytes);
    const bool isHarmless = isBinary ? PropertyListGuard::isHarmlessBinary(bytes)
                                     : PropertyListGuard::isHarmlessXML(bytes);
    if (bytes.size() > mostBytes || !isHarmless)
        return std::nullopt;
    const NoLanguage duringReading;
    plist_t root = nullptr;
    const auto read = isBinary ? plist_from_bin : plist_from_xml;
    read(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    const Node owner(root);
    return root ? valueOfNode(root, deepest) : std::nullopt;
}

std::optional<Dictionary> PropertyList::dictionaryWithContentsOfFile(const fs::path& path)
{
    const auto bytes = FileBytes::readWhole(path, mostBytes);
    auto value = bytes ? valueOf(*bytes) : std::nullopt;
    auto* dictionary = value ? std::get_if<Dictionary>(&*value) : nullptr;
    return dictionary ? std::optional(std::move(*dictionary)) : std::nullopt;
}

int PropertyList::intValue(const Value& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return TextNumber::intValue(*text);
    if (const auto* number = std::get_if<std::int64_t>(&value))
        return static_cast<int>(*number); // the lower half, as the platform's numbers do
    if (const auto* real = std::get_if<double>(&value))
        return static_cast<int>(TextNumber::truncated(*real));
    const auto* isTrue = std::get_if<bool>(&value);
    return isTrue && *isTrue ? 1 : 0;
}
