// The list of remembered destination folders as it is stored.
#pragma once

#include <QStringList>

namespace Destinations
{

// Each folder abbreviated, the first of equal ones, no empty ones; the order is kept.
[[nodiscard]] QStringList removeDuplicatesAndAbbreviateWithTilde(const QStringList& paths);

} // namespace Destinations
