#include "platform/base/bundle/PropertyList.h"
#include "platform/base/bundle/PropertyListNodes.h"
#include "system/FileBytes.h"
#include "system/PartFile.h"
#include "system/Utf8.h"

#include <algorithm>
#include <system_error>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{

using namespace PropertyList;
using namespace PropertyListNodes;
using std::chrono::seconds;

// Makes the node of each kind of value.
struct NodeMaker {
    plist_t operator()(bool value) const { return plist_new_bool(value ? 1 : 0); }
    plist_t operator()(double value) const { return plist_new_real(value); }
    plist_t operator()(const std::string& value) const { return plist_new_string(value.c_str()); }
    plist_t operator()(const Data& value) const
    {
        return plist_new_data(value.bytes.data(), value.bytes.size());
    }
    plist_t operator()(std::int64_t value) const
    {
        return plist_new_uint(static_cast<std::uint64_t>(value));
    }
    plist_t operator()(Date value) const
    {
        const auto sinceReference = value.time_since_epoch() - referenceDate;
        const auto whole = std::chrono::floor<seconds>(sinceReference);
        return plist_new_date(static_cast<std::int32_t>(whole.count()),
            static_cast<std::int32_t>((sinceReference - whole).count()));
    }
    plist_t operator()(const Array& array) const
    {
        plist_t node = plist_new_array();
        for (const Value& value : array)
            plist_array_append_item(node, std::visit(*this, value));
        return node;
    }
    plist_t operator()(const Dictionary& dictionary) const
    {
        plist_t node = plist_new_dict();
        for (const auto& [key, value] : dictionary)
            plist_dict_set_item(node, key.c_str(), std::visit(*this, value));
        return node;
    }
};

// How many bytes the character in front takes that XML can hold and gives back as it is; 0: none.
std::size_t characterSize(std::string_view text)
{
    const char first = text.front();
    const bool isControl
        = (first >= '\0' && first < ' ' && first != '\t' && first != '\n') || first == '\x7f';
    const bool isNoCharacter = text.starts_with("\xef\xbf\xbe") || text.starts_with("\xef\xbf\xbf");
    return isControl || isNoCharacter ? 0 : Utf8::sequenceLength(text);
}

bool isText(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        if (size == 0)
            return false;
        text.remove_prefix(size);
    }
    return true;
}

bool hasOnlyText(const Value& value)
{
    if (const auto* text = std::get_if<std::string>(&value))
        return isText(*text);
    if (const auto* array = std::get_if<Array>(&value))
        return std::ranges::all_of(*array, hasOnlyText);
    if (const auto* dictionary = std::get_if<Dictionary>(&value))
        return std::ranges::all_of(*dictionary,
            [](const auto& item) { return isText(item.first) && hasOnlyText(item.second); });
    return true;
}

mode_t permissionsFor(const fs::path& path)
{
    struct stat former = {};
    return ::stat(path.c_str(), &former) == 0 ? former.st_mode & 07777 : 0644;
}

bool replaceFile(const fs::path& path, std::string_view bytes)
{
    std::error_code unresolved;
    const fs::path place = fs::weakly_canonical(path, unresolved); // what a link leads to
    if (unresolved)
        return false;
    PartFile file(place.native(), S_IRUSR | S_IWUSR);
    return file && FileBytes::writeAll(file.descriptor(), bytes)
        && ::fchmod(file.descriptor(), permissionsFor(place)) == 0
        && !file.commitDurably(PartFile::Existing::replace);
}

} // namespace

std::optional<std::string> PropertyList::xmlOf(const Dictionary& dictionary)
{
    const Value value = dictionary;
    if (!hasOnlyText(value))
        return std::nullopt;
    char* text = nullptr;
    std::uint32_t size = 0;
    {
        const NoLanguage duringWriting;
        const Node root(NodeMaker()(dictionary));
        plist_to_xml(root.get(), &text, &size);
    }
    const Memory<char> owner(text);
    std::string xml(text ? std::string_view(text, size) : std::string_view());
    return valueOf(xml) == value ? std::optional(std::move(xml)) : std::nullopt;
}

bool PropertyList::writeToFile(const Dictionary& dictionary, const fs::path& path)
{
    const auto xml = xmlOf(dictionary);
    return xml && replaceFile(path, *xml);
}
