// The reader's end of the pipeline: fills blocks with what the walk finds. Warns of everything that
// does not get into the archive as it is, and counts both.
#pragma once

#include "tools/common/OwnFiles.h"
#include "tools/common/Pipeline.h"
#include "tools/common/SourceFile.h"
#include "tools/common/TreeWalk.h"
#include "tools/zip/Block.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

class BlockReader : public TreeVisitor
{
public:
    BlockReader(Pipeline<Block>::Feed& feed, const OwnFiles& ownFiles, bool compresses)
        : _feed(feed)
        , _ownFiles(ownFiles)
        , _compresses(compresses)
    {
    }

    void visitFile(const TreeItem& item) override;
    void visitLink(const TreeItem& item, const struct stat& status) override;
    bool visitFolder(const TreeItem& item, const struct stat& status) override;
    void warn(std::string_view path, const std::string& reason) override;

    // Hands on what has been filled.
    void flush();

    [[nodiscard]] std::uint64_t entryCount() const { return _entryCount; }
    [[nodiscard]] std::uint64_t warningCount() const { return _warningCount; }

protected:
    // A file or folder has got its entry, which others may follow; the file is still open.
    virtual void storedFile(const TreeItem& /*item*/, const SourceFile& /*file*/) { }
    virtual void storedFolder(const TreeItem& /*item*/, const struct stat& /*status*/) { }

    // An entry that is there in one piece, at most one block long.
    void addContent(ZipFormat::Entry entry, std::span<const std::byte> content);

private:
    void addWhole(SourceFile& file, ZipFormat::Entry entry);
    void addPieces(SourceFile& file, ZipFormat::Entry entry);
    void addMember(ZipFormat::Entry entry, std::size_t size, bool isStored);
    Block& blockFor(std::size_t size);

    Pipeline<Block>::Feed& _feed;
    const OwnFiles& _ownFiles;
    const bool _compresses;
    std::unique_ptr<Block> _block;
    std::uint64_t _entryCount = 0;
    std::uint64_t _warningCount = 0;
};
