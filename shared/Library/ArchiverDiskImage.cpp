// The producer of disk images. This version has only its first step, the test for the tools that a
// disk image takes. The one that makes it belongs to another system and has no substitute here, so
// that nothing follows on the systems this version runs on; where all tools are found, the job ends
// with a LaunchFailure that says so.

#include "platform/base/Task.h"
#include "shared/Library/Archiver.h"

std::optional<Archiver::Path> Archiver::createDMG(const Path& /*staged*/,
    const std::optional<std::string>& /*withPassword*/, const Path& /*toFolder*/)
{
    if (missingTool(ArchiveTypeDiskImage))
        return std::nullopt;
    throw LaunchFailure("this version makes no disk images, though the system has the tools");
}
