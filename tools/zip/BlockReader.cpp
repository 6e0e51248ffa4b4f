#include "tools/zip/BlockReader.h"

#include "tools/common/Failure.h"
#include "tools/common/Messages.h"

#include <algorithm>
#include <cerrno>

namespace
{

// Bounds what headers add to a block that holds little data.
constexpr std::size_t mostMembers = 1024;
constexpr std::size_t mostNameBytes = pieceSize;

bool isTooLong(const std::string& name)
{
    return name.size() > ZipFormat::longestName;
}

} // namespace

void BlockReader::visitFile(const TreeItem& item)
{
    SourceFile file(item);
    if (file.isUnreadable()) {
        warn(item.path, file.problem());
        return;
    }
    if (_ownFiles.isOutput(file.status()))
        return;
    ZipFormat::Entry entry = ZipFormat::makeEntry(std::string(item.path), file.status());
    if (isTooLong(entry.name)) {
        warn(item.path, errorText(ENAMETOOLONG));
        return;
    }
    if (file.size() <= pieceSize)
        addWhole(file, std::move(entry));
    else
        addPieces(file, std::move(entry));
    if (!file.problem().empty())
        warn(item.path, file.problem());
    if (!file.isUnreadable())
        storedFile(item, file);
}

void BlockReader::visitLink(const TreeItem& item, const struct stat& status)
{
    ZipFormat::Entry entry = ZipFormat::makeEntry(std::string(item.path), status);
    const std::optional<std::string> target = readLink(item, status);
    if (!target || isTooLong(entry.name)) {
        warn(item.path, errorText(target ? ENAMETOOLONG : errno));
        return;
    }
    addContent(std::move(entry), std::as_bytes(std::span(*target)));
}

bool BlockReader::visitFolder(const TreeItem& item, const struct stat& status)
{
    if (_ownFiles.isScratchFolder(status))
        return false;
    ZipFormat::Entry entry = ZipFormat::makeEntry(std::string(item.path) + '/', status);
    if (isTooLong(entry.name)) {
        warn(item.path, errorText(ENAMETOOLONG));
        return false;
    }
    addContent(std::move(entry), {});
    storedFolder(item, status);
    return true;
}

void BlockReader::warn(std::string_view path, const std::string& reason)
{
    ++_warningCount;
    Messages::warn(path, reason);
}

void BlockReader::flush()
{
    if (_block && !_block->members.empty())
        _feed.submit(std::move(_block));
}

void BlockReader::addWhole(SourceFile& file, ZipFormat::Entry entry)
{
    Block& block = blockFor(file.size());
    const std::size_t size = file.read(block.room());
    file.finish();
    if (!file.isUnreadable())
        addMember(std::move(entry), size, !_compresses);
}

void BlockReader::addPieces(SourceFile& file, ZipFormat::Entry entry)
{
    const bool isStored = !_compresses || file.looksIncompressible();
    entry.method = isStored ? ZipFormat::Method::Stored : ZipFormat::Method::Deflated;
    entry.reservesZip64
        = (isStored ? file.size() : Compressor::worstSize(file.size())) >= ZipFormat::mark32;
    flush();
    Member piece;
    piece.entry = std::move(entry);
    piece.isStored = isStored;
    piece.isLast = false;
    while (!piece.isLast) {
        Block& block = blockFor(pieceSize);
        piece.size = file.read(block.room());
        piece.isLast = file.remaining() == 0 || !file.problem().empty();
        if (piece.isLast)
            file.finish();
        piece.isAbandoned = file.isUnreadable();
        if (piece.isFirst) {
            if (piece.isAbandoned)
                return; // nothing of it is under way
            ++_entryCount;
        }
        block.members.push_back(piece);
        flush();
        piece.isFirst = false;
        piece.entry = {};
    }
}

void BlockReader::addContent(ZipFormat::Entry entry, std::span<const std::byte> content)
{
    Block& block = blockFor(content.size());
    std::ranges::copy(content, block.room().begin());
    const bool isStored = !_compresses || !S_ISREG(entry.mode);
    addMember(std::move(entry), content.size(), isStored);
}

// The entry's data has been put at the beginning of the block's room.
void BlockReader::addMember(ZipFormat::Entry entry, std::size_t size, bool isStored)
{
    Member member;
    _block->nameBytes += entry.name.size();
    member.entry = std::move(entry);
    member.begin = _block->used;
    member.size = size;
    member.isStored = isStored;
    _block->members.push_back(std::move(member));
    _block->used += size;
    ++_entryCount;
}

// A block with room for an entry of that size.
Block& BlockReader::blockFor(std::size_t size)
{
    if (_block
        && (_block->room().size() < size || _block->members.size() >= mostMembers
            || _block->nameBytes >= mostNameBytes))
        flush();
    if (!_block) {
        _block = _feed.take();
        _block->clear();
    }
    return *_block;
}
