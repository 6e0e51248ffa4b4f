#include "app/window/RequestSettings.h"

#include "app/job/ArchiveKind.h"
#include "app/job/ProposedName.h"
#include "app/window/Destinations.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "system/PathString.h"

#include <cstdint>

namespace
{

int integerFor(const char* key)
{
    return static_cast<std::int32_t>(
        UserDefaults::standardUserDefaults().integerForKey(QLatin1String(key)));
}

QStringList rememberedFolders()
{
    return UserDefaults::standardUserDefaults()
        .stringArrayForKey(QStringLiteral("Destinations"))
        .value_or(QStringList());
}

} // namespace

std::string RequestSettings::nameFor(const std::vector<Path>& items)
{
    const bool keepsExtension = UserDefaults::standardUserDefaults().boolForKey(
        QStringLiteral("KeepExtensionForDefaultName"));
    return proposedName(items, keepsExtension, ".zip");
}

int RequestSettings::selectedDestination()
{
    const int tag = integerFor("SelectedDestination");
    const auto count = static_cast<int>(rememberedFolders().size());
    return tag < count + DestinationTagFirstFolder ? tag : int{DestinationTagSameAsSource};
}

std::optional<RequestSettings::Path> RequestSettings::rememberedFolder()
{
    const int tag = selectedDestination();
    if (tag < DestinationTagFirstFolder)
        return std::nullopt;
    const Path folder
        = PathText::pathOf(rememberedFolders().value(tag - DestinationTagFirstFolder));
    return PathString::stringByExpandingTildeInPath(folder.native());
}

ArchiveJob::Request RequestSettings::request(std::vector<Path> items, const Path& archive)
{
    const int type = integerFor("ArchiveType");
    const ArchiveKind* kind = ArchiveKind::ofType(type);
    std::string name = PathString::stringByDeletingPathExtension(archive.filename().native());
    if (kind != nullptr)
        name += kind->extension;
    return {.items = std::move(items),
        .archive = archive.parent_path() / name,
        .type = type,
        .compressionLevel = integerFor("CompressionLevel")};
}
