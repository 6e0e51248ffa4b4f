#include "tools/zip/ZipJob.h"

#include "system/FileName.h"
#include "system/PathString.h"
#include "tools/common/Failure.h"
#include "tools/common/ItemName.h"
#include "tools/common/Messages.h"
#include "tools/common/OwnFiles.h"

#include <string>

namespace
{

// The item's own name, or the next free one if the archive has that already, so that nothing is
// lost.
std::string storedName(const ZipOptions& options, const ZipWriter& writer)
{
    if (!writer.existing().holdsItem)
        return options.item;
    FileStatus status{};
    const bool isFolder = ::lstat(options.item.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    const auto taken = writer.existing().topNames(writer.file().descriptor());
    const auto isTaken = [&](const std::string& name) { return taken.contains(name); };
    std::string name = FileName::nextFree(options.item, isFolder, isTaken);
    Messages::tell(Messages::readableName(options.item),
        "the archive has this name already; stored as " + Messages::readableName(name));
    return name;
}

std::string progressLine(const ZipFormat::Entry& entry)
{
    const bool isDeflated = entry.method == ZipFormat::Method::deflated;
    const std::uint64_t saved
        = entry.size > entry.compressedSize ? entry.size - entry.compressedSize : 0;
    const std::uint64_t percent = saved == 0 ? 0 : (200 * saved + entry.size) / (2 * entry.size);
    return "  adding: " + Messages::progressName(entry.name)
        + (isDeflated ? " (deflated " : " (stored ") + std::to_string(percent) + "%)\n";
}

ToolResult addItem(const ZipOptions& options)
{
    ZipWriter writer(options.archive, ZipWriter::Existing::addTo, progressLine, options.item);
    const OwnFiles ownFiles(writer.file(), PathString::folderOf(options.archive));
    const TreeToStore tree{.item = options.item,
        .storedName = storedName(options, writer),
        .walk = {.followsLinks = false, .excludesDSStore = options.excludesDSStore},
        .level = options.level};
    return storeTree(writer, tree, [&](Pipeline<Block>::Feed& feed) {
        return std::make_unique<BlockReader>(feed, ownFiles, options.level > 0);
    });
}

} // namespace

ToolResult runZip(const ZipOptions& options)
{
    constexpr int mostTries = 10; // with others making and removing the archive all the time
    for (int tries = 1;; ++tries) {
        try {
            return addItem(options);
        } catch (const Failure& failure) {
            // Somebody else made the archive while this run did: now there is one to add to.
            if (failure.kind() != FailureKind::nameTaken || tries == mostTries)
                throw;
        }
    }
}
