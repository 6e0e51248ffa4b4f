#pragma once

#include "tools/common/ToolMain.h"
#include "tools/tar/TarOptions.h"

// Makes the archive, one gzip stream (RFC 1952) around a tar archive. Throws Failure when it is not
// made; what was there before is then as it was.
ToolResult runTar(const TarOptions& options);
