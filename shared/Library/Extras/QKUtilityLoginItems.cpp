// The part of QKUtility that asks the desktop which programs start with the session, and changes
// that: read from the desktop's folders, written by way of scripts.

#include "platform/desktop/services/AppleScript.h"
#include "platform/desktop/services/LoginItems.h"
#include "shared/Library/Extras/QKUtility.h"
#include "system/PathString.h"

#include <algorithm>

void QKUtility::tellSystemEvents(const std::string& script)
{
    // No result and no error is told: whoever wants to know reads the items.
    (void)AppleScript::initWithSource(
        "tell application \"System Events\"\n" + script + "\nend tell")
        .executeAndReturnError();
}

void QKUtility::addAutoLaunchPath(const std::string& path, bool hide)
{
    tellSystemEvents("make new login item at end with properties {path:\"" + path
        + "\",hidden:" + (hide ? "true" : "false") + "}\n");
}

void QKUtility::removeAutoLaunchAppNamed(const std::string& name)
{
    tellSystemEvents(
        "delete login item \"" + PathString::stringByDeletingPathExtension(name) + "\"");
}

std::vector<PropertyList::Dictionary> QKUtility::getAutoLaunchedApplications()
{
    std::vector<PropertyList::Dictionary> items;
    for (const LoginItems::Record& record : LoginItems::list())
        items.push_back({{"Path", record.path.native()}, {"Hide", record.hide}});
    return items;
}

bool QKUtility::appAutoLaunches(const std::string& application)
{
    const auto items = getAutoLaunchedApplications();
    return std::any_of(items.begin(), items.end(), [&](const PropertyList::Dictionary& item) {
        return PathString::lastPathComponent(std::get<std::string>(item.at("Path"))) == application;
    });
}
