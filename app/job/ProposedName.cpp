#include "app/job/ProposedName.h"

#include "system/FileName.h"
#include "system/PathString.h"
#include "system/Utf8.h"

std::string proposedName(const std::vector<std::filesystem::path>& items, bool keepsExtension,
    const std::string& archiveExtension)
{
    std::string untitled = "Untitled";
    if (items.size() != 1)
        return untitled;
    const std::string own = PathString::lastPathComponent(items.front().native());
    const std::string name = keepsExtension ? own : PathString::stringByDeletingPathExtension(own);
    if (own == "/" || name == "." || name == "..") // of "...txt", say
        return untitled;
    return std::string(Utf8::shortened(name, FileName::longestInBytes - archiveExtension.size()));
}
