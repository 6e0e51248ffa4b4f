#include "tools/tar/TarJob.h"

#include "tools/common/Crc32.h"
#include "tools/common/Failure.h"
#include "tools/common/Messages.h"
#include "tools/common/OutputFile.h"
#include "tools/common/Pipeline.h"
#include "tools/tar/StreamReader.h"

#include <array>

namespace
{

constexpr int level = 6;

// A gzip member without name and time, so that the same files give the same bytes.
constexpr std::array<std::byte, 10> gzipHeader
    = {std::byte{0x1f}, std::byte{0x8b}, std::byte{8}, // deflate
        std::byte{0}, std::byte{0}, std::byte{0}, std::byte{0}, std::byte{0}, std::byte{0},
        std::byte{3}}; // Unix

// What was read, for deciding whether there is an archive to be made of it.
struct Counts {
    std::uint64_t entries = 0;
    std::uint64_t excluded = 0;
    std::uint64_t warnings = 0;
};

// The writer's end of the pipeline.
class GzipWriter
{
public:
    explicit GzipWriter(OutputFile& file)
        : _file(file)
    {
        _file.append(gzipHeader);
    }

    void add(const StreamBlock& block)
    {
        _file.append(block.output);
        _crc = Crc32::combine(_crc, block.crc, block.used);
        _size += block.used;
        Messages::progress(block.progress);
    }

    void finish()
    {
        ByteBuffer trailer;
        trailer.u32(_crc);
        trailer.u32(_size);
        _file.append(trailer);
    }

private:
    OutputFile& _file;
    std::uint32_t _crc = 0;
    std::uint64_t _size = 0; // before compression
};

Counts readTree(
    Pipeline<StreamBlock>::Feed& feed, const OwnFiles& ownFiles, const TarOptions& options)
{
    const TreeWalkOptions walk{.followsLinks = true, .excludesDSStore = options.excludesDSStore};
    StreamReader reader(
        feed, ownFiles, [&] { return LinkedFiles(options.folder, walk, ownFiles); });
    const std::uint64_t excluded = walkTree(options.folder, options.folder, walk, reader);
    reader.finish();
    return {reader.entryCount(), excluded, reader.warningCount()};
}

// A worker of the pipeline.
class StreamCompressor
{
public:
    void operator()(StreamBlock& block)
    {
        block.crc = Crc32::of(block.data());
        _compressor.compressPiece(block.data(), block.isLast, block.output);
    }

private:
    Compressor _compressor{level};
};

// A folder that is empty may be archived, but not one that only what was excluded leaves empty.
bool isNothingLeft(const Counts& counts)
{
    return counts.entries == 0 || (counts.entries == 1 && counts.excluded > 0);
}

} // namespace

ToolResult runTar(const TarOptions& options)
{
    OutputFile file = OutputFile::createBeside(options.archive);
    const OwnFiles ownFiles(file, ".");
    GzipWriter writer(file);
    Counts counts;
    {
        Pipeline<StreamBlock> pipeline(compressingThreads());
        pipeline.run([&](auto& feed) { counts = readTree(feed, ownFiles, options); },
            [] { return StreamCompressor(); },
            [&](const StreamBlock& block) { writer.add(block); });
    } // every thread has ended, so the counts are there
    if (isNothingLeft(counts))
        throw Failure(FailureKind::nothingToDo, "nothing to do: no input is left to be stored");
    writer.finish();
    const bool isDurable = file.commitDurably(OutputFile::Existing::replace);
    return isDurable && counts.warnings == 0 ? ToolResult::complete : ToolResult::withWarnings;
}
