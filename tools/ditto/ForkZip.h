#pragma once

#include "tools/common/ToolMain.h"
#include "tools/ditto/DittoOptions.h"

// Makes a zip of options.source at options.target, replacing what is there, with the attributes of
// NAME/FILE in the entry __MACOSX/NAME/._FILE that follows it: where archives from macOS have them.
// Throws Failure when no archive is made.
ToolResult makeForkZip(const DittoOptions& options);
