#include "platform/base/bundle/Bundle.h"
#include "platform/base/bundle/PropertyList.h"
#include "platform/base/files/ScratchFolder.h"
#include "shared/Library/Extras/UserDefaultsExtras.h"
#include "shared/Library/Extras/ValueCoding.h"
#include "tests/fuzz/Fuzzing.h"

#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

using Fuzzing::require;
using PropertyList::Dictionary;

namespace
{

// What can be written is read and written the same. Much that is read cannot be written.
void requireWayBack(const Dictionary& dictionary)
{
    const auto xml = PropertyList::xmlOf(dictionary);
    if (!xml)
        return;
    const auto again = PropertyList::valueOf(*xml);
    require(again && std::get<Dictionary>(*again) == dictionary, "what is written can be read");
    require(PropertyList::xmlOf(std::get<Dictionary>(*again)) == xml, "and written the same");
}

// A program's folder that holds the list as its information and as a resource.
class ListInBundle
{
public:
    ListInBundle() { fs::create_directories(_folder.path() / "Contents/Resources"); }

    void use(std::string_view list)
    {
        for (const char* name : {"Contents/Info.plist", "Contents/Resources/Fuzz.plist"})
            std::ofstream(_folder.path() / name, std::ios::binary) << list;
        Bundle::setMain(Bundle(_folder.path()));
    }

    fs::path settingsFile() const { return _folder.path() / "settings"; } // never written

private:
    const ScratchFolder _folder;
};

// As colours and fonts are read: archives of the wrong kind are refused.
template <typename Read> void readArchive(Read read)
{
    try {
        (void)read();
    } catch (const UnarchivingFailure&) {
        return;
    }
}

void readAsEveryType(const UserDefaults& defaults, const QString& key)
{
    (void)defaults.boolForKey(key);
    (void)defaults.integerForKey(key);
    (void)defaults.stringArrayForKey(key);
    (void)UserDefaultsExtras::stringForKey(defaults, key, {});
    (void)UserDefaultsExtras::dateForKey(defaults, key);
    readArchive([&] { return UserDefaultsExtras::colorForKey(defaults, key); });
    readArchive([&] { return UserDefaultsExtras::fontForKey(defaults, key); });
    try {
        (void)UserDefaultsExtras::pointForKey(defaults, key);
    } catch (const std::out_of_range&) {
        return; // a list of less than two
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes = Fuzzing::textOf(data, size);
    const auto value = PropertyList::valueOf(bytes);
    if (!value)
        return 0;
    (void)PropertyList::intValue(*value);
    const auto* dictionary = std::get_if<Dictionary>(&*value);
    if (!dictionary)
        return 0;
    requireWayBack(*dictionary);

    static ListInBundle bundle;
    bundle.use(bytes);
    UserDefaults defaults(bundle.settingsFile());
    UserDefaultsExtras::registerDefaultsWithResource(defaults, QStringLiteral("Fuzz"));
    require(Bundle::main().infoDictionary().size() == dictionary->size(), "files hold the same");
    for (const auto& [key, element] : *dictionary) {
        (void)PropertyList::intValue(element);
        (void)Bundle::main().stringForInfoDictionaryKey(key);
        readAsEveryType(defaults, QString::fromStdString(key));
    }
    return 0;
}
