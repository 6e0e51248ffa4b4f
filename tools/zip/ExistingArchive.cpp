#include "tools/zip/ExistingArchive.h"

#include "system/FileBytes.h"
#include "tools/common/Failure.h"
#include "tools/zip/ByteReader.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>

namespace
{

using ZipFormat::mark16;
using ZipFormat::mark32;

constexpr std::size_t longestComment = 0xffff;

Failure bad(const std::string& what)
{
    return {FailureKind::badArchive, "the existing archive " + what + "; it was left as it is"};
}

void readAt(int descriptor, std::uint64_t offset, std::span<std::byte> bytes)
{
    if (FileBytes::readFullyAt(descriptor, offset, bytes)
        != static_cast<std::ptrdiff_t>(bytes.size()))
        throw bad("can't be read");
}

std::vector<std::byte> readAt(int descriptor, std::uint64_t offset, std::size_t size)
{
    std::vector<std::byte> bytes(size);
    readAt(descriptor, offset, std::span(bytes));
    return bytes;
}

struct EndRecord {
    std::uint16_t disk = 0;
    std::uint16_t directoryDisk = 0;
    std::uint16_t entriesHere = 0;
    std::uint16_t entries = 0;
    std::uint32_t size = 0;
    std::uint32_t offset = 0;
};

EndRecord parseEnd(std::span<const std::byte> bytes)
{
    ByteReader reader(bytes);
    reader.skip(4);
    EndRecord end;
    end.disk = reader.u16();
    end.directoryDisk = reader.u16();
    end.entriesHere = reader.u16();
    end.entries = reader.u16();
    end.size = reader.u32();
    end.offset = reader.u32();
    return end;
}

// Where in the last bytes of the file the end record begins: the last place from which a record
// with its comment reaches exactly to the end.
std::optional<std::size_t> findEnd(std::span<const std::byte> last)
{
    for (std::size_t size = ZipFormat::endSize; size <= last.size(); ++size) {
        ByteReader reader(last.last(size));
        if (reader.u32() != ZipFormat::endSignature)
            continue;
        reader.skip(ZipFormat::endSize - 6);
        if (reader.u16() + ZipFormat::endSize == size)
            return last.size() - size;
    }
    return std::nullopt;
}

// The zip64 record that the locator right before the end record leads to, if there is a locator.
std::optional<ZipFormat::Directory> readZip64(int descriptor, std::uint64_t endOffset)
{
    constexpr std::size_t bothSizes = ZipFormat::zip64EndSize + ZipFormat::zip64LocatorSize;
    if (endOffset < bothSizes)
        return std::nullopt;
    const std::vector<std::byte> bytes = readAt(descriptor, endOffset - bothSizes, bothSizes);
    const std::span<const std::byte> both(bytes);
    ByteReader locator(both.subspan(ZipFormat::zip64EndSize));
    if (locator.u32() != ZipFormat::zip64LocatorSignature)
        return std::nullopt;
    const std::uint32_t disk = locator.u32();
    const std::uint64_t recordOffset = locator.u64();
    ByteReader record(both);
    if (disk != 0 || recordOffset != endOffset - bothSizes
        || record.u32() != ZipFormat::zip64EndSignature
        || record.u64() != ZipFormat::zip64EndSize - 12)
        throw bad("has a zip64 end of an unknown form");
    record.skip(4);
    if (record.u32() != 0 || record.u32() != 0)
        throw bad("spans several files");
    ZipFormat::Directory directory{.usesZip64 = true};
    const std::uint64_t entriesHere = record.u64();
    directory.entryCount = record.u64();
    directory.size = record.u64();
    directory.offset = record.u64();
    if (entriesHere != directory.entryCount)
        throw bad("spans several files");
    return directory;
}

// The end record's numbers count unless they are marks; the mark itself may be meant when there is
// no zip64 record: that is how some programs write exactly 65,535 entries.
ZipFormat::Directory combine(const EndRecord& end, const std::optional<ZipFormat::Directory>& zip64)
{
    if (end.disk != 0 || end.directoryDisk != 0 || end.entries != end.entriesHere)
        throw bad("spans several files");
    if (!zip64)
        return {.entryCount = end.entries, .size = end.size, .offset = end.offset};
    const auto agrees = [](std::uint64_t value, std::uint64_t mark, std::uint64_t wide) {
        return value == mark || value == wide;
    };
    if (!agrees(end.entries, mark16, zip64->entryCount) || !agrees(end.size, mark32, zip64->size)
        || !agrees(end.offset, mark32, zip64->offset))
        throw bad("contradicts itself about its size");
    return *zip64;
}

std::uint64_t wideOffset(std::span<const std::byte> extra, std::size_t valuesBefore)
{
    ByteReader fields(extra);
    while (fields.remaining() >= 4) {
        const std::uint16_t id = fields.u16();
        ByteReader field(fields.raw(fields.u16()));
        if (id != ZipFormat::zip64ExtraId)
            continue;
        field.skip(8 * valuesBefore);
        const std::uint64_t offset = field.u64();
        if (!field.isPastEnd())
            return offset;
    }
    throw bad("lacks a zip64 field");
}

struct Record {
    std::string_view name;
    std::uint64_t offset = 0;
    std::size_t size = 0;
    bool usesZip64 = false;
};

// The record that `bytes` begin with; none if they end within it.
std::optional<Record> parseRecord(std::span<const std::byte> bytes)
{
    ByteReader reader(bytes);
    if (bytes.size() < ZipFormat::centralSize)
        return std::nullopt;
    if (reader.u32() != ZipFormat::centralSignature)
        throw bad("has a damaged directory");
    reader.skip(16);
    const std::uint32_t compressedSize = reader.u32();
    const std::uint32_t size = reader.u32();
    const std::size_t nameSize = reader.u16();
    const std::size_t extraSize = reader.u16();
    const std::size_t commentSize = reader.u16();
    const std::uint16_t disk = reader.u16();
    reader.skip(6);
    const std::uint32_t offset = reader.u32();
    const std::span<const std::byte> name = reader.raw(nameSize);
    const std::span<const std::byte> extra = reader.raw(extraSize);
    reader.skip(commentSize);
    if (reader.isPastEnd())
        return std::nullopt;
    if (disk != 0)
        throw bad("spans several files");

    Record record;
    record.name = {reinterpret_cast<const char*>(name.data()), name.size()};
    record.offset = offset;
    record.usesZip64 = size == mark32 || compressedSize == mark32 || offset == mark32;
    if (offset == mark32)
        record.offset = wideOffset(
            extra, static_cast<std::size_t>(size == mark32) + (compressedSize == mark32 ? 1 : 0));
    record.size = ZipFormat::centralSize + nameSize + extraSize + commentSize;
    return record;
}

// What readers extract it to: some programs store "./NAME" or "/NAME".
std::string_view topNameOf(std::string_view name)
{
    while (name.starts_with('/') || name.starts_with("./"))
        name.remove_prefix(name.find('/') + 1);
    return name.substr(0, name.find('/'));
}

// Visits every record. Whatever the size of the directory, little memory is needed: it is read anew
// for each item that is added, and fresh memory takes far longer than the reading.
template <class Visit>
void readDirectory(int descriptor, const ZipFormat::Directory& directory, const Visit& visit)
{
    constexpr std::size_t readSize = std::size_t{32} << 10;
    constexpr std::size_t longestRecord = ZipFormat::centralSize + 3 * std::size_t{0xffff};
    std::uint64_t unread = directory.size;
    std::uint64_t count = 0;
    ByteBuffer window; // what has been read and not parsed
    (void)window.room(longestRecord + readSize);
    while (unread > 0) {
        const std::size_t more = std::min<std::uint64_t>(readSize, unread);
        const std::uint64_t offset = directory.offset + directory.size - unread;
        readAt(descriptor, offset, window.room(more));
        window.keep(more);
        unread -= more;
        std::span<const std::byte> rest(window);
        for (; const std::optional<Record> record = parseRecord(rest); ++count) {
            visit(*record);
            rest = rest.subspan(record->size);
        }
        if (unread == 0 && !rest.empty())
            throw bad("has a damaged directory");
        std::copy_n(rest.data(), rest.size(), window.begin());
        window.shrinkTo(rest.size());
    }
    if (count != directory.entryCount)
        throw bad("has another number of members than it says");
}

} // namespace

ExistingArchive ExistingArchive::read(int descriptor, std::uint64_t size, std::string_view item)
{
    std::vector<std::byte> last;
    std::optional<std::size_t> endAt;
    for (const std::size_t comment : {std::size_t{0}, longestComment}) { // most have none
        const auto lastSize = std::min<std::uint64_t>(size, ZipFormat::endSize + comment);
        last = readAt(descriptor, size - lastSize, lastSize);
        endAt = findEnd(last);
        if (endAt)
            break;
    }
    if (!endAt)
        throw bad("is no complete zip archive");
    const std::uint64_t endOffset = size - last.size() + *endAt;
    const std::optional<ZipFormat::Directory> zip64 = readZip64(descriptor, endOffset);

    ExistingArchive archive;
    archive.directory = combine(parseEnd(std::span(last).subspan(*endAt)), zip64);
    const std::uint64_t tailOffset
        = zip64 ? endOffset - ZipFormat::zip64LocatorSize - ZipFormat::zip64EndSize : endOffset;
    const ZipFormat::Directory& directory = archive.directory;
    if (directory.offset > tailOffset || directory.size != tailOffset - directory.offset)
        throw bad("holds something besides its members, or is cut short");
    archive.tail = readAt(descriptor, tailOffset, size - tailOffset);
    const auto commentAt = static_cast<std::ptrdiff_t>(endOffset - tailOffset + ZipFormat::endSize);
    archive.comment.assign(archive.tail.begin() + commentAt, archive.tail.end());
    bool usesZip64 = false;
    const auto visit = [&](const Record& record) {
        if (record.offset >= directory.offset)
            throw bad("has a member outside of it");
        usesZip64 = usesZip64 || record.usesZip64;
        archive.holdsItem = archive.holdsItem || topNameOf(record.name) == item;
    };
    readDirectory(descriptor, directory, visit);
    archive.directory.usesZip64 = directory.usesZip64 || usesZip64;
    return archive;
}

std::unordered_set<std::string> ExistingArchive::topNames(int descriptor) const
{
    std::unordered_set<std::string> names;
    readDirectory(descriptor, directory,
        [&](const Record& record) { names.emplace(topNameOf(record.name)); });
    return names;
}
