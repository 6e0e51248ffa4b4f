// The reader's end of the pipeline: fills blocks with what the walk finds.
#pragma once

#include "tools/common/Pipeline.h"
#include "tools/common/TreeReader.h"
#include "tools/zip/Block.h"

#include <memory>
#include <span>
#include <string>

class BlockReader : public TreeReader
{
public:
    BlockReader(Pipeline<Block>::Feed& feed, const OwnFiles& ownFiles, bool compresses)
        : TreeReader(ownFiles)
        , _feed(feed)
        , _compresses(compresses)
    {
    }

    // Hands on what has been filled.
    void flush();

protected:
    void addFile(const TreeItem& item, SourceFile& file) override;
    void addLink(
        const TreeItem& item, const FileStatus& status, const std::string& target) override;
    bool addFolder(const TreeItem& item, const FileStatus& status) override;

    // A file or folder has got its entry, which others may follow; the file is still open.
    virtual void storedFile(const TreeItem& /*item*/, const SourceFile& /*file*/) { }
    virtual void storedFolder(const TreeItem& /*item*/, const FileStatus& /*status*/) { }

    // An entry that is there in one piece, at most one block long.
    void addContent(ZipFormat::Entry entry, std::span<const std::byte> content);

private:
    [[nodiscard]] bool _canHold(const ZipFormat::Entry& entry, std::string_view path);
    void _addWhole(SourceFile& file, ZipFormat::Entry entry);
    void _addPieces(SourceFile& file, ZipFormat::Entry entry);
    void _addMember(ZipFormat::Entry entry, std::size_t size, bool isStored);
    Block& _blockFor(std::size_t size);

    Pipeline<Block>::Feed& _feed;
    const bool _compresses;
    std::unique_ptr<Block> _block;
};
