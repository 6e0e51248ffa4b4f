#pragma once

#include "tools/common/ToolMain.h"

#include <string>

// Copies a file, link or folder with all in it, keeping permissions, times, links, extended
// attributes and, where that is allowed, owners. Hard links become files of their own. A folder is
// merged into one that is there, a file is put into it; other files there are replaced. Each file
// gets its name when it is complete. Throws Failure when nothing could be copied, or not be
// written.
ToolResult copyTree(const std::string& source, const std::string& target);
