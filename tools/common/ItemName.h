#pragma once

#include <functional>
#include <string>
#include <string_view>

// The one name in the current folder that `argument` means, with or without "./" before it; empty
// if it means anything else (a path, the folder itself, its parent).
std::string itemName(std::string_view argument);

// The first of "NAME 2", "NAME 3" … that is not taken, the number standing before a file's
// extension; shortened to fit 255 bytes.
std::string nextFreeName(
    std::string_view name, bool isFolder, const std::function<bool(const std::string&)>& isTaken);

// Whether `name` is that of a scratch folder in which the program lets the tools work.
bool isScratchFolderName(std::string_view name);
