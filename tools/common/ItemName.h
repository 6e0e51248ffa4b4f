#pragma once

#include <string>
#include <string_view>

// The one name in the current folder that `argument` means, with or without "./" before it; empty
// if it means anything else (a path, the folder itself, its parent).
std::string itemName(std::string_view argument);
