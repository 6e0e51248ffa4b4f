#pragma once

#include <filesystem>

// The places that the system sets aside for a purpose.
namespace SearchPaths
{

// $TMPDIR when that is an absolute path, else /tmp.
[[nodiscard]] std::filesystem::path temporaryDirectory();

} // namespace SearchPaths
