#include "platform/base/process/Environment.h"

#include <algorithm>
#include <string_view>

#include <unistd.h>

std::vector<std::string> Environment::ours(const std::vector<std::string>& changes)
{
    std::vector<std::string> result = changes;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        const std::string_view name = text.substr(0, text.find('=') + 1);
        const bool isChanged = std::ranges::any_of(
            changes, [&](const std::string& change) { return change.starts_with(name); });
        if (!isChanged)
            result.emplace_back(text);
    }
    return result;
}
