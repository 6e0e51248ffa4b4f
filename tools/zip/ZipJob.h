#pragma once

#include "tools/zip/ZipOptions.h"

enum class ZipResult {
    Complete,
    WithWarnings, // the archive is made, but something was left out or has changed while it was
                  // read
};

// Adds the item to the archive. Throws Failure when the archive is not made; it is then as it was.
ZipResult runZip(const ZipOptions& options, unsigned threadCount);
