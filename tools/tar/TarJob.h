#pragma once

#include "tools/tar/TarOptions.h"

enum class TarResult {
    Complete,
    WithWarnings, // the archive is made, but something was left out or has changed while it was
                  // read
};

// Makes the archive, one gzip stream (RFC 1952) around a tar archive. Throws Failure when it is not
// made; what was there before is then as it was.
TarResult runTar(const TarOptions& options, unsigned threadCount);
