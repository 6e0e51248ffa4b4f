#include "tools/common/ItemName.h"

#include "tools/common/Utf8.h"

std::string itemName(std::string_view argument)
{
    if (argument.starts_with("./"))
        argument.remove_prefix(2);
    const bool isOneName = !argument.empty() && argument != "." && argument != ".."
        && argument.find('/') == std::string_view::npos;
    return std::string(isOneName ? argument : "");
}

std::string nextFreeName(
    std::string_view name, bool isFolder, const std::function<bool(const std::string&)>& isTaken)
{
    constexpr std::size_t longestName = 255;
    const std::size_t dot = isFolder ? std::string_view::npos : name.rfind('.');
    const bool hasExtension = dot != std::string_view::npos && dot != 0;
    const std::string_view stem = hasExtension ? name.substr(0, dot) : name;
    const std::string_view extension = hasExtension ? name.substr(dot) : "";
    for (unsigned number = 2;; ++number) {
        std::string tail = " " + std::to_string(number);
        tail += extension;
        const std::size_t room = tail.size() < longestName ? longestName - tail.size() : 0;
        std::string candidate(Utf8::shortened(stem, room));
        candidate += tail;
        if (!isTaken(candidate))
            return candidate;
    }
}

bool isScratchFolderName(std::string_view name)
{
    return name.starts_with("org.parcelo.Parcelo");
}
