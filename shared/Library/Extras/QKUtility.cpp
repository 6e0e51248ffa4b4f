#include "shared/Library/Extras/QKUtility.h"

#include <atomic>
#include <utility>

namespace
{

QKUtility::VersionQuery versionQuery;
std::atomic<std::int32_t> knownVersion = 0; // two threads that ask at once get the same answer

bool isVersionWithin16Of(std::uint32_t first)
{
    return static_cast<std::uint32_t>(QKUtility::systemVersion()) - first < 16;
}

} // namespace

void QKUtility::setVersionQuery(VersionQuery query)
{
    versionQuery = std::move(query);
    knownVersion = 0;
}

std::int32_t QKUtility::systemVersion()
{
    if (knownVersion == 0 && versionQuery)
        knownVersion = versionQuery().value_or(0);
    return knownVersion;
}

bool QKUtility::isJaguar()
{
    return isVersionWithin16Of(0x1020);
}

bool QKUtility::isPanther()
{
    return isVersionWithin16Of(0x1030);
}
