// The choices of the destination menu, and the list of remembered folders as it is stored.
#pragma once

#include <QStringList>

#include <cstdint>

enum DestinationTag : std::int32_t {
    DestinationTagSameAsSource = 0, // the folder that holds the first dropped item
    DestinationTagEmail = 1, // a new mail message
    DestinationTagFirstFolder = 2, // and upward: the remembered folders in their order
};

namespace Destinations
{

// Each folder abbreviated, the first of equal ones, no empty ones; the order is kept.
[[nodiscard]] QStringList removeDuplicatesAndAbbreviateWithTilde(const QStringList& paths);

} // namespace Destinations
