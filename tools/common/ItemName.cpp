#include "tools/common/ItemName.h"

std::string itemName(std::string_view argument)
{
    if (argument.starts_with("./"))
        argument.remove_prefix(2);
    const bool isOneName = !argument.empty() && argument != "." && argument != ".."
        && argument.find('/') == std::string_view::npos;
    return std::string(isOneName ? argument : "");
}
