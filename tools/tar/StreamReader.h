// The reader's end of the pipeline: turns what the walk finds into a tar stream, cut in blocks.
#pragma once

#include "tools/common/Pipeline.h"
#include "tools/common/TreeReader.h"
#include "tools/tar/HardLinks.h"
#include "tools/tar/StreamBlock.h"
#include "tools/tar/TarFormat.h"

#include <cstdint>
#include <memory>
#include <string>

class StreamReader : public TreeReader
{
public:
    StreamReader(
        Pipeline<StreamBlock>::Feed& feed, const OwnFiles& ownFiles, HardLinks::WalkAhead walkAhead)
        : TreeReader(ownFiles)
        , _feed(feed)
        , _hardLinks(std::move(walkAhead))
    {
    }

    // Ends the stream and hands on the rest of it.
    void finish();

protected:
    void addFile(const TreeItem& item, SourceFile& file) override;
    void addLink(
        const TreeItem& item, const FileStatus& status, const std::string& target) override;
    bool addFolder(const TreeItem& item, const FileStatus& status) override;

private:
    void _addSmall(SourceFile& file, TarFormat::Entry entry);
    void _addLarge(SourceFile& file, const TarFormat::Entry& entry);
    void _addBare(const TarFormat::Entry& entry);
    void _addZeros(std::uint64_t count);
    void _append(std::span<const std::byte> bytes);
    void _endEntry(const TarFormat::Entry& entry);
    StreamBlock& _blockWithRoom();
    StreamBlock& _openBlock();
    void _submit();

    Pipeline<StreamBlock>::Feed& _feed;
    std::unique_ptr<StreamBlock> _block;
    std::uint64_t _streamSize = 0; // of what has been handed on
    HardLinks _hardLinks;
};
