// The part of QKUtility that keeps the agent flag of the bundle.

#include "platform/base/bundle/Bundle.h"
#include "platform/base/bundle/PropertyList.h"
#include "shared/Library/Extras/QKUtility.h"

#include <chrono>
#include <system_error>

namespace
{

constexpr const char* flagKey = "LSUIElement";

std::filesystem::path informationFile()
{
    return Bundle::main().bundlePath() / "Contents" / "Info.plist";
}

} // namespace

bool QKUtility::isHeadless()
{
    const auto information = PropertyList::dictionaryWithContentsOfFile(informationFile());
    if (!information)
        return false;
    const auto flag = information->find(flagKey);
    return flag != information->end() && PropertyList::intValue(flag->second) == 1;
}

void QKUtility::setHeadless(bool headless)
{
    if (auto information = PropertyList::dictionaryWithContentsOfFile(informationFile())) {
        (*information)[flagKey] = std::int64_t{headless ? 1 : 0};
        (void)PropertyList::writeToFile(*information, informationFile());
    }
    std::error_code denied; // as without effect as a file that cannot be written
    std::filesystem::last_write_time(
        Bundle::main().bundlePath(), std::filesystem::file_time_type::clock::now(), denied);
}
