#include "platform/base/bundle/Bundle.h"

#include <mutex>
#include <system_error>
#include <utility>

struct Bundle::Information {
    std::once_flag isRead;
    PropertyList::Dictionary dictionary;
};

Bundle::Bundle(std::filesystem::path folder)
    : _folder(std::move(folder))
    , _information(std::make_shared<Information>())
{
}

std::filesystem::path Bundle::executablePath()
{
    std::error_code unreadable; // leaves an empty path: a bundle without resources
    return std::filesystem::read_symlink("/proc/self/exe", unreadable);
}

Bundle& Bundle::_main()
{
    static Bundle bundle = [] {
        const std::filesystem::path folder = executablePath().parent_path();
        std::error_code missing;
        const bool isInside = std::filesystem::exists(folder / "Contents", missing);
        return Bundle(isInside ? folder : folder.parent_path() / "libexec" / "parcelo");
    }();
    return bundle;
}

const Bundle& Bundle::main()
{
    return _main();
}

void Bundle::setMain(Bundle bundle)
{
    _main() = std::move(bundle);
}

std::optional<std::filesystem::path> Bundle::pathForResource(
    const std::string& resource, const std::string& ofType) const
{
    const auto path = _folder / "Contents" / "Resources"
        / (ofType.empty() ? resource : resource + "." + ofType);
    std::error_code missing;
    if (!std::filesystem::exists(path, missing))
        return std::nullopt;
    return path;
}

const PropertyList::Dictionary& Bundle::infoDictionary() const
{
    std::call_once(_information->isRead, [&] {
        const auto path = _folder / "Contents" / "Info.plist";
        _information->dictionary
            = PropertyList::dictionaryWithContentsOfFile(path).value_or(PropertyList::Dictionary());
    });
    return _information->dictionary;
}

std::optional<PropertyList::Value> Bundle::objectForInfoDictionaryKey(const std::string& key) const
{
    const auto found = infoDictionary().find(key);
    return found == infoDictionary().end() ? std::nullopt : std::optional(found->second);
}

std::string Bundle::stringForInfoDictionaryKey(const std::string& key) const
{
    const auto value = objectForInfoDictionaryKey(key);
    const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text == nullptr ? std::string() : *text;
}
