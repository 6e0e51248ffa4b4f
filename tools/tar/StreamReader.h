// The reader's end of the pipeline: turns what the walk finds into a tar stream, cut in blocks.
// Warns of everything that does not get into the archive as it is, and counts both.
#pragma once

#include "tools/common/OwnFiles.h"
#include "tools/common/Pipeline.h"
#include "tools/common/SourceFile.h"
#include "tools/common/TreeWalk.h"
#include "tools/tar/HardLinks.h"
#include "tools/tar/StreamBlock.h"
#include "tools/tar/TarFormat.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class StreamReader : public TreeVisitor
{
public:
    StreamReader(Pipeline<StreamBlock>::Feed& feed, const OwnFiles& ownFiles)
        : _feed(feed)
        , _ownFiles(ownFiles)
    {
    }

    void visitFile(const TreeItem& item) override;
    void visitLink(const TreeItem& item, const struct stat& status) override;
    bool visitFolder(const TreeItem& item, const struct stat& status) override;
    void warn(std::string_view path, const std::string& reason) override;

    // Ends the stream and hands on the rest of it.
    void finish();

    [[nodiscard]] std::uint64_t entryCount() const { return _entryCount; }
    [[nodiscard]] std::uint64_t warningCount() const { return _warningCount; }

private:
    void addSmall(SourceFile& file, TarFormat::Entry entry);
    void addLarge(SourceFile& file, const TarFormat::Entry& entry);
    void addZeros(std::uint64_t count);
    void append(std::span<const std::byte> bytes);
    void endEntry(const TarFormat::Entry& entry);
    StreamBlock& block();
    void submit();

    Pipeline<StreamBlock>::Feed& _feed;
    const OwnFiles& _ownFiles;
    std::unique_ptr<StreamBlock> _block;
    std::uint64_t _streamSize = 0; // of what has been handed on
    HardLinks _hardLinks;
    std::uint64_t _entryCount = 0;
    std::uint64_t _warningCount = 0;
};
