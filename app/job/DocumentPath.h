#pragma once

#include <filesystem>
#include <system_error>

// The path of a file named on the command line: absolute, with a name of its own at the end. A link
// stays one, but "." and ".." are the folder that they stand for. A folder on the way that cannot
// be read is a failure.
[[nodiscard]] std::filesystem::path documentPath(
    const std::filesystem::path& file, std::error_code& failure);

// Whether it is an address, by which some file managers name files. A file may be named like one,
// too.
[[nodiscard]] bool isAddress(const std::filesystem::path& file);
