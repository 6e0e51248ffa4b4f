#pragma once

#include "tools/ditto/DittoOptions.h"

// Makes a zip of options.source at options.target, replacing what is there, with the attributes of
// NAME/FILE in the entry __MACOSX/NAME/._FILE that follows it: where archives from macOS have them.
// False if something was left out or changed while it was read; throws Failure when no archive is
// made.
[[nodiscard]] bool makeForkZip(const DittoOptions& options, unsigned threadCount);
