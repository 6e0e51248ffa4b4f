// What a name in a folder can be, and giving names to files.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>

namespace FileName
{

constexpr std::size_t longestInBytes = 255; // what all common file systems take

// The first of "NAME 2", "NAME 3" … that is not taken, the number standing before a file's
// extension; shortened to fit.
[[nodiscard]] std::string nextFree(
    std::string_view name, bool isFolder, const std::function<bool(const std::string&)>& isTaken);

enum class Existing { keep, replace };

// Renames what is no folder. With Existing::keep it is EEXIST if the new name is taken, also where
// the file system has no such rename. Relative paths begin in the folder of that descriptor.
[[nodiscard]] std::error_code rename(
    int folder, const std::string& from, const std::string& to, Existing existing);

} // namespace FileName
