#include "platform/base/bundle/PropertyList.h"
#include "platform/base/bundle/PropertyListNodes.h"
#include "system/FileDescriptor.h"

#include <algorithm>
#include <system_error>

#include <fcntl.h>
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
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return first == '\t' || first == '\n' || (first >= 0x20 && first != 0x7f) ? 1 : 0;
    const std::size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || size > text.size())
        return 0;
    for (std::size_t at = 1; at < size; ++at)
        if ((byte(at) & 0xc0) != 0x80)
            return 0;
    const bool isLong = (first == 0xe0 && byte(1) < 0xa0) || (first == 0xf0 && byte(1) < 0x90);
    const bool isSurrogate = first == 0xed && byte(1) >= 0xa0;
    const bool isBeyond = first == 0xf4 && byte(1) >= 0x90;
    const bool isNoCharacter = first == 0xef && byte(1) == 0xbf && byte(2) >= 0xbe;
    return isLong || isSurrogate || isBeyond || isNoCharacter ? 0 : size;
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

bool writeAll(const FileDescriptor& file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count
            = retryOnInterrupt([&] { return ::write(file.number(), bytes.data(), bytes.size()); });
        if (count < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return ::fsync(file.number()) == 0;
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
    std::string hidden = place.parent_path() / ("." + place.filename().native() + "-XXXXXX");
    const FileDescriptor file(unresolved ? -1 : ::mkostemp(hidden.data(), O_CLOEXEC));
    if (!file)
        return false;
    const bool isReplaced = ::fchmod(file.number(), permissionsFor(place)) == 0
        && writeAll(file, bytes) && ::rename(hidden.c_str(), place.c_str()) == 0;
    if (!isReplaced)
        ::unlink(hidden.c_str());
    return isReplaced;
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
