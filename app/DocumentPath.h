#pragma once

#include <filesystem>

// The path of a file named on the command line: absolute, with a name of its own at the end. A link
// stays one, but "." and ".." are the folder that they stand for. Throws std::filesystem errors.
[[nodiscard]] std::filesystem::path documentPath(const std::filesystem::path& file);
