// The environment of this process, for programs that are started.
#pragma once

#include <string>
#include <vector>

namespace Environment
{

// All of it as "NAME=value"; the changes, given in the same way, come besides or instead of ours.
[[nodiscard]] std::vector<std::string> ours(const std::vector<std::string>& changes = {});

} // namespace Environment
