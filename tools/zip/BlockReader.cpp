#include "tools/zip/BlockReader.h"

#include "tools/common/Failure.h"

#include <algorithm>
#include <cerrno>

namespace
{

// Bounds what headers add to a block that holds little data.
constexpr std::size_t mostMembers = 1024;
constexpr std::size_t mostNameBytes = pieceSize;

} // namespace

void BlockReader::addFile(const TreeItem& item, SourceFile& file)
{
    ZipFormat::Entry entry = ZipFormat::makeEntry(std::string(item.path), file.status());
    if (!_canHold(entry, item.path))
        return;
    if (file.size() <= pieceSize)
        _addWhole(file, std::move(entry));
    else
        _addPieces(file, std::move(entry));
    if (!file.isUnreadable())
        storedFile(item, file);
}

void BlockReader::addLink(const TreeItem& item, const FileStatus& status, const std::string& target)
{
    ZipFormat::Entry entry = ZipFormat::makeEntry(std::string(item.path), status);
    if (_canHold(entry, item.path))
        addContent(std::move(entry), std::as_bytes(std::span(target)));
}

bool BlockReader::addFolder(const TreeItem& item, const FileStatus& status)
{
    ZipFormat::Entry entry = ZipFormat::makeEntry(std::string(item.path) + '/', status);
    if (!_canHold(entry, item.path))
        return false;
    addContent(std::move(entry), {});
    storedFolder(item, status);
    return true;
}

void BlockReader::flush()
{
    if (_block && !_block->members.empty())
        _feed.submit(std::move(_block));
}

// Else warns.
bool BlockReader::_canHold(const ZipFormat::Entry& entry, std::string_view path)
{
    const bool fits = entry.name.size() <= ZipFormat::longestName;
    if (!fits)
        warn(path, errorText(ENAMETOOLONG));
    return fits;
}

void BlockReader::_addWhole(SourceFile& file, ZipFormat::Entry entry)
{
    Block& block = _blockFor(file.size());
    const std::size_t size = file.read(block.room());
    file.finish();
    if (!file.isUnreadable())
        _addMember(std::move(entry), size, !_compresses);
}

void BlockReader::_addPieces(SourceFile& file, ZipFormat::Entry entry)
{
    const bool isStored = !_compresses || file.looksIncompressible();
    entry.method = isStored ? ZipFormat::Method::stored : ZipFormat::Method::deflated;
    entry.reservesZip64
        = (isStored ? file.size() : Compressor::worstSize(file.size())) >= ZipFormat::mark32;
    flush();
    Member piece;
    piece.entry = std::move(entry);
    piece.isStored = isStored;
    piece.isLast = false;
    while (!piece.isLast) {
        Block& block = _blockFor(pieceSize);
        piece.size = file.read(block.room());
        piece.isLast = file.remaining() == 0 || !file.problem().empty();
        if (piece.isLast)
            file.finish();
        piece.isAbandoned = file.isUnreadable();
        if (piece.isFirst) {
            if (piece.isAbandoned)
                return; // nothing of it is under way
            countEntry();
        }
        block.members.push_back(piece);
        flush();
        piece.isFirst = false;
        piece.entry = {};
    }
}

void BlockReader::addContent(ZipFormat::Entry entry, std::span<const std::byte> content)
{
    Block& block = _blockFor(content.size());
    std::copy_n(content.data(), content.size(), block.room().data());
    const bool isStored = !_compresses || !S_ISREG(entry.mode);
    _addMember(std::move(entry), content.size(), isStored);
}

// The entry's data has been put at the beginning of the block's room.
void BlockReader::_addMember(ZipFormat::Entry entry, std::size_t size, bool isStored)
{
    Member member;
    _block->nameBytes += entry.name.size();
    member.entry = std::move(entry);
    member.begin = _block->used;
    member.size = size;
    member.isStored = isStored;
    _block->members.push_back(std::move(member));
    _block->used += size;
    countEntry();
}

// A block with room for an entry of that size.
Block& BlockReader::_blockFor(std::size_t size)
{
    if (_block
        && (_block->room().size() < size || _block->members.size() >= mostMembers
            || _block->nameBytes >= mostNameBytes))
        flush();
    if (!_block)
        _block = _feed.take();
    return *_block;
}
