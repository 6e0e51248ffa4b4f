#include "tools/zip/ZipJob.h"

#include "tools/common/Failure.h"
#include "tools/common/ItemName.h"
#include "tools/common/Messages.h"
#include "tools/common/OwnFiles.h"
#include "tools/common/Pipeline.h"
#include "tools/zip/BlockCompressor.h"
#include "tools/zip/BlockReader.h"
#include "tools/zip/ZipWriter.h"

#include <string>

#include <sys/stat.h>

namespace
{

// The item's own name, or the next free one if the archive has that already, so that nothing is
// lost.
std::string storedName(const ZipOptions& options, const ZipWriter& writer)
{
    if (!writer.holds(options.item))
        return options.item;
    struct stat status {
    };
    const bool isFolder = lstat(options.item.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    const auto isTaken = [&](const std::string& name) { return writer.holds(name); };
    std::string name = nextFreeName(options.item, isFolder, isTaken);
    Messages::tell(Messages::readableName(options.item)
        + ": the archive has this name already; stored as " + Messages::readableName(name));
    return name;
}

std::string folderOfArchive(const ZipOptions& options)
{
    const std::size_t slash = options.archive.rfind('/');
    return slash == std::string::npos ? "." : options.archive.substr(0, slash + 1);
}

ZipResult addItem(const ZipOptions& options, unsigned threadCount)
{
    ZipWriter writer(options.archive);
    const OwnFiles ownFiles(writer.file(), folderOfArchive(options));
    const TreeWalkOptions walk{.followsLinks = false, .excludesDSStore = options.excludesDSStore};
    std::uint64_t entryCount = 0;
    std::uint64_t warningCount = 0;
    const auto read = [&](Pipeline<Block>::Feed& feed) {
        BlockReader reader(feed, ownFiles, options.level > 0);
        walkTree(options.item, storedName(options, writer), walk, reader);
        reader.flush();
        entryCount = reader.entryCount();
        warningCount = reader.warningCount();
    };
    {
        Pipeline<Block> pipeline(threadCount);
        pipeline.run(
            read, [&] { return BlockCompressor(options.level); },
            [&](const Block& block) { writer.add(block); });
    } // every thread has ended, so the counts are there
    if (writer.entryCount() != entryCount)
        throw Failure(FailureKind::Internal, "internal error: entries have been lost");
    writer.finish();
    return warningCount == 0 ? ZipResult::Complete : ZipResult::WithWarnings;
}

} // namespace

ZipResult runZip(const ZipOptions& options, unsigned threadCount)
{
    constexpr int mostTries = 10; // with others making and removing the archive all the time
    for (int tries = 1;; ++tries) {
        try {
            return addItem(options, threadCount);
        } catch (const Failure& failure) {
            // Somebody else made the archive while this run did: now there is one to add to.
            if (failure.kind() != FailureKind::NameTaken || tries == mostTries)
                throw;
        }
    }
}
