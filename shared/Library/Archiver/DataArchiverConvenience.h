// What the engine asks of a chunk of tool output.
#pragma once

#include <string_view>

namespace DataArchiverConvenience
{

// The number of line feeds; -1 for bytes that are not all ASCII (0 to 127).
[[nodiscard]] int numberOfLines(std::string_view data);

} // namespace DataArchiverConvenience
