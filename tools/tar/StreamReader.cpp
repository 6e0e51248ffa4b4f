#include "tools/tar/StreamReader.h"

#include "tools/common/Messages.h"

#include <algorithm>

namespace
{

// A file up to this size is read before its header is written, into one block: if reading fails
// nothing has been promised yet. Larger ones may cross from block to block.
constexpr std::size_t largestSmall = pieceSize / 4;

TarFormat::Entry makeEntry(TarFormat::Type type, const TreeItem& item, const FileStatus& status)
{
    TarFormat::Entry entry;
    entry.type = type;
    entry.name = item.path;
    entry.status = status;
    return entry;
}

} // namespace

void StreamReader::addFile(const TreeItem& item, SourceFile& file)
{
    const FileStatus& status = file.status();
    TarFormat::Entry entry = makeEntry(TarFormat::Type::file, item, status);
    if (const std::string* first = _hardLinks.find(status)) {
        entry.type = TarFormat::Type::hardLink;
        entry.linkTarget = *first;
        _addBare(entry);
        return;
    }
    entry.size = file.size();
    if (file.size() <= largestSmall)
        _addSmall(file, entry);
    else
        _addLarge(file, entry);
    if (file.problem().empty())
        _hardLinks.add(status, entry.name);
}

void StreamReader::addLink(
    const TreeItem& item, const FileStatus& status, const std::string& target)
{
    TarFormat::Entry entry = makeEntry(TarFormat::Type::link, item, status);
    entry.linkTarget = target;
    _addBare(entry);
}

bool StreamReader::addFolder(const TreeItem& item, const FileStatus& status)
{
    TarFormat::Entry entry = makeEntry(TarFormat::Type::folder, item, status);
    entry.name += '/';
    _addBare(entry);
    _hardLinks.enter(status);
    return true;
}

void StreamReader::finish()
{
    const std::uint64_t size = _streamSize + _openBlock().used + 2 * TarFormat::blockSize;
    _addZeros(2 * TarFormat::blockSize
        + (TarFormat::recordSize - size % TarFormat::recordSize) % TarFormat::recordSize);
    _openBlock().isLast = true;
    _submit();
}

void StreamReader::_addSmall(SourceFile& file, TarFormat::Entry entry)
{
    ByteBuffer header = TarFormat::header(entry);
    const std::size_t needed = header.size() + file.size() + TarFormat::blockSize;
    if (_openBlock().room().size() < needed)
        _submit();
    if (_openBlock().room().size() < needed) { // the path alone may be longer than a block
        _addLarge(file, entry);
        return;
    }
    const std::size_t size = file.read(_openBlock().room().subspan(header.size()));
    file.finish();
    if (file.isUnreadable())
        return;
    if (size != entry.size) {
        entry.size = size;
        header = TarFormat::header(entry);
    }
    _append(header);
    _openBlock().used += size;
    _addZeros(TarFormat::padding(size));
    _endEntry(entry);
}

// The size has been written before the content: what is missing of that in the end is made of
// zeros.
void StreamReader::_addLarge(SourceFile& file, const TarFormat::Entry& entry)
{
    _append(TarFormat::header(entry));
    while (file.remaining() > 0 && file.problem().empty()) {
        StreamBlock& block = _blockWithRoom();
        block.used += file.read(block.room());
    }
    file.finish();
    _addZeros(file.remaining() + TarFormat::padding(entry.size));
    _endEntry(entry);
}

// An entry without content.
void StreamReader::_addBare(const TarFormat::Entry& entry)
{
    _append(TarFormat::header(entry));
    _endEntry(entry);
}

void StreamReader::_addZeros(std::uint64_t count)
{
    while (count > 0) {
        const std::span<std::byte> room = _blockWithRoom().room();
        const std::span<std::byte> part = room.first(std::min<std::uint64_t>(room.size(), count));
        std::fill_n(part.data(), part.size(), std::byte{0});
        _block->used += part.size();
        count -= part.size();
    }
}

void StreamReader::_append(std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const std::span<std::byte> room = _blockWithRoom().room();
        const std::span<const std::byte> part = bytes.first(std::min(room.size(), bytes.size()));
        std::copy_n(part.data(), part.size(), room.data());
        _block->used += part.size();
        bytes = bytes.subspan(part.size());
    }
}

void StreamReader::_endEntry(const TarFormat::Entry& entry)
{
    countEntry();
    _openBlock().progress += "  adding: " + Messages::progressName(entry.name) + '\n';
}

StreamBlock& StreamReader::_blockWithRoom()
{
    if (_openBlock().room().empty())
        _submit();
    return _openBlock();
}

StreamBlock& StreamReader::_openBlock()
{
    if (!_block)
        _block = _feed.take();
    return *_block;
}

void StreamReader::_submit()
{
    _streamSize += _block->used;
    _feed.submit(std::move(_block));
}
