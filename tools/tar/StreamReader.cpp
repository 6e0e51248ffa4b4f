#include "tools/tar/StreamReader.h"

#include "tools/common/Failure.h"
#include "tools/common/Messages.h"

#include <algorithm>
#include <cerrno>
#include <optional>

namespace
{

// A file up to this size is read before its header is written, into one block: if reading fails
// nothing has been promised yet. Larger ones may cross from block to block.
constexpr std::size_t largestSmall = pieceSize / 4;

TarFormat::Entry makeEntry(TarFormat::Type type, const TreeItem& item, const struct stat& status)
{
    TarFormat::Entry entry;
    entry.type = type;
    entry.name = item.path;
    entry.status = status;
    return entry;
}

} // namespace

void StreamReader::visitFile(const TreeItem& item)
{
    SourceFile file(item);
    if (file.isUnreadable()) {
        warn(item.path, file.problem());
        return;
    }
    const struct stat& status = file.status();
    if (_ownFiles.isOutput(status))
        return;
    TarFormat::Entry entry = makeEntry(TarFormat::Type::File, item, status);
    if (const std::string* first = _hardLinks.find(status)) {
        entry.type = TarFormat::Type::HardLink;
        entry.linkTarget = *first;
        append(TarFormat::header(entry));
        endEntry(entry);
        return;
    }
    entry.size = file.size();
    if (file.size() <= largestSmall)
        addSmall(file, entry);
    else
        addLarge(file, entry);
    if (!file.problem().empty())
        warn(item.path, file.problem());
    else
        _hardLinks.add(status, entry.name);
}

void StreamReader::visitLink(const TreeItem& item, const struct stat& status)
{
    std::optional<std::string> target = readLink(item, status);
    if (!target) {
        warn(item.path, errorText(errno));
        return;
    }
    TarFormat::Entry entry = makeEntry(TarFormat::Type::Link, item, status);
    entry.linkTarget = std::move(*target);
    append(TarFormat::header(entry));
    endEntry(entry);
}

bool StreamReader::visitFolder(const TreeItem& item, const struct stat& status)
{
    if (_ownFiles.isScratchFolder(status))
        return false;
    TarFormat::Entry entry = makeEntry(TarFormat::Type::Folder, item, status);
    entry.name += '/';
    append(TarFormat::header(entry));
    endEntry(entry);
    return true;
}

void StreamReader::warn(std::string_view path, const std::string& reason)
{
    ++_warningCount;
    Messages::warn(path, reason);
}

void StreamReader::finish()
{
    const std::uint64_t size = _streamSize + block().used + 2 * TarFormat::blockSize;
    addZeros(2 * TarFormat::blockSize
        + (TarFormat::recordSize - size % TarFormat::recordSize) % TarFormat::recordSize);
    block().isLast = true;
    submit();
}

void StreamReader::addSmall(SourceFile& file, TarFormat::Entry entry)
{
    std::vector<std::byte> header = TarFormat::header(entry);
    const std::size_t needed = header.size() + file.size() + TarFormat::blockSize;
    if (block().room().size() < needed)
        submit();
    if (block().room().size() < needed) { // the path alone may be longer than a block
        addLarge(file, entry);
        return;
    }
    const std::size_t size = file.read(block().room().subspan(header.size()));
    file.finish();
    if (file.isUnreadable())
        return;
    if (size != entry.size) {
        entry.size = size;
        header = TarFormat::header(entry);
    }
    append(header);
    block().used += size;
    addZeros(TarFormat::padding(size));
    endEntry(entry);
}

// The size has been written before the content: what is missing of that in the end is made of
// zeros.
void StreamReader::addLarge(SourceFile& file, const TarFormat::Entry& entry)
{
    append(TarFormat::header(entry));
    while (file.remaining() > 0 && file.problem().empty()) {
        if (block().room().empty())
            submit();
        block().used += file.read(block().room());
    }
    file.finish();
    addZeros(file.remaining() + TarFormat::padding(entry.size));
    endEntry(entry);
}

void StreamReader::addZeros(std::uint64_t count)
{
    while (count > 0) {
        if (block().room().empty())
            submit();
        const std::span<std::byte> room = block().room();
        const std::span<std::byte> part = room.first(std::min<std::uint64_t>(room.size(), count));
        std::ranges::fill(part, std::byte{0});
        block().used += part.size();
        count -= part.size();
    }
}

void StreamReader::append(std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        if (block().room().empty())
            submit();
        const std::span<std::byte> room = block().room();
        const std::span<const std::byte> part = bytes.first(std::min(room.size(), bytes.size()));
        std::ranges::copy(part, room.begin());
        block().used += part.size();
        bytes = bytes.subspan(part.size());
    }
}

void StreamReader::endEntry(const TarFormat::Entry& entry)
{
    ++_entryCount;
    block().progress += "  adding: " + Messages::progressName(entry.name) + '\n';
}

StreamBlock& StreamReader::block()
{
    if (!_block) {
        _block = _feed.take();
        _block->clear();
    }
    return *_block;
}

void StreamReader::submit()
{
    _streamSize += _block->used;
    _feed.submit(std::move(_block));
}
