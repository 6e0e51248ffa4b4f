#pragma once

#include "tools/zip/StoreTree.h"
#include "tools/zip/ZipOptions.h"

// Adds the item to the archive. Throws Failure when the archive is not made; it is then as it was.
ToolResult runZip(const ZipOptions& options);
