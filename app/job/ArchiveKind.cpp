#include "app/job/ArchiveKind.h"

#include "shared/Library/Archiver/Archiver.h"

#include <algorithm>

namespace
{

const std::vector<ArchiveKind> kinds{
    {ArchiveTypePlainZip, "zip", ".zip", "zip", {12, 18}},
    {ArchiveTypeMacZip, "mac-zip", ".zip", "ditto", {1}},
    {ArchiveTypeTarGz, "tar.gz", ".tar.gz", "tar", {1}},
    {ArchiveTypeDiskImage, "dmg", ".dmg", "hdiutil", {}},
};

template <typename Value> const ArchiveKind* find(Value value, Value ArchiveKind::*field)
{
    const auto found = std::ranges::find(kinds, value, field);
    return found == kinds.end() ? nullptr : &*found;
}

} // namespace

const ArchiveKind* ArchiveKind::ofType(int type)
{
    return find(type, &ArchiveKind::type);
}

const ArchiveKind* ArchiveKind::named(std::string_view word)
{
    return find(word, &ArchiveKind::word);
}
