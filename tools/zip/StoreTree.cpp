#include "tools/zip/StoreTree.h"

#include "tools/common/Failure.h"
#include "tools/zip/BlockCompressor.h"

ToolResult storeTree(ZipWriter& writer, const TreeToStore& tree, const MakeBlockReader& makeReader)
{
    std::uint64_t entryCount = 0;
    std::uint64_t warningCount = 0;
    const auto read = [&](Pipeline<Block>::Feed& feed) {
        const std::unique_ptr<BlockReader> reader = makeReader(feed);
        walkTree(tree.item, tree.storedName, tree.walk, *reader);
        reader->flush();
        entryCount = reader->entryCount();
        warningCount = reader->warningCount();
    };
    {
        Pipeline<Block> pipeline(compressingThreads());
        pipeline.run(
            read, [&] { return BlockCompressor(tree.level); },
            [&](const Block& block) { writer.add(block); });
    } // every thread has ended, so the counts are there
    if (writer.entryCount() != entryCount)
        throw Failure(FailureKind::internal, "internal error: entries have been lost");
    const bool isSecured = writer.finish();
    return isSecured && warningCount == 0 ? ToolResult::complete : ToolResult::withWarnings;
}
