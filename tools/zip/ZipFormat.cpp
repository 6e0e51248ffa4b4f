#include "tools/zip/ZipFormat.h"

#include "system/Utf8.h"

#include <algorithm>

namespace
{

using ZipFormat::Entry;
using ZipFormat::mark16;
using ZipFormat::mark32;
using ZipFormat::Method;

constexpr unsigned hostUnix = 3;
constexpr std::uint16_t utf8Flag = 1U << 11;
constexpr std::uint32_t folderAttribute = 0x10;
constexpr std::uint32_t readOnlyAttribute = 0x01;

constexpr std::uint16_t timestampExtraId = 0x5455;
constexpr std::uint16_t ntfsExtraId = 0x000a;
constexpr std::uint16_t ownerExtraId = 0x7875;
constexpr std::uint16_t paddingExtraId = 0xd935; // alignment; readers pass it over
constexpr std::size_t zip64SizesLength = 16;

// The lowest version that can extract the entry, times ten.
unsigned versionNeeded(const Entry& entry, bool usesZip64)
{
    if (usesZip64)
        return 45;
    return entry.method == Method::Deflated || entry.isFolder() ? 20 : 10;
}

std::uint16_t flagsOf(const Entry& entry)
{
    return Utf8::isAscii(entry.name) || !Utf8::isValid(entry.name) ? 0 : utf8Flag;
}

std::uint64_t marked(std::uint64_t value)
{
    return std::min<std::uint64_t>(value, mark32);
}

// 1980 to 2107 is what the format holds; times outside become the nearest.
std::uint32_t dosTimeOf(std::time_t time)
{
    constexpr std::uint32_t first = (1U << 21) | (1U << 16);
    constexpr std::uint32_t last
        = (127U << 25) | (12U << 21) | (31U << 16) | (23U << 11) | (59U << 5) | 29U;
    struct tm local {
    };
    if (localtime_r(&time, &local) == nullptr)
        return time < 0 ? first : last;
    if (local.tm_year < 80)
        return first;
    if (local.tm_year > 207)
        return last;
    const auto bits
        = [](int value, int shift) { return static_cast<std::uint32_t>(value) << shift; };
    return bits(local.tm_year - 80, 25) | bits(local.tm_mon + 1, 21) | bits(local.tm_mday, 16)
        | bits(local.tm_hour, 11) | bits(local.tm_min, 5) | bits(std::min(local.tm_sec, 59) / 2, 0);
}

void appendTimeExtra(ByteWriter& extra, std::time_t modified)
{
    if (modified >= 0 && modified <= INT32_MAX) {
        extra.u16(timestampExtraId);
        extra.u16(5);
        extra.u8(1); // only the modification time
        extra.u32(static_cast<std::uint64_t>(modified));
        return;
    }
    constexpr std::int64_t secondsFrom1601 = 11'644'473'600;
    constexpr std::int64_t ticksPerSecond = 10'000'000;
    const auto ticks = static_cast<std::uint64_t>((modified + secondsFrom1601) * ticksPerSecond);
    extra.u16(ntfsExtraId);
    extra.u16(32);
    extra.u32(0);
    extra.u16(1); // the times
    extra.u16(24);
    for (int kind = 0; kind < 3; ++kind) // modified, accessed, created: only the first is known
        extra.u64(ticks);
}

void appendOwnerExtra(ByteWriter& extra, const Entry& entry)
{
    extra.u16(ownerExtraId);
    extra.u16(11);
    extra.u8(1);
    extra.u8(4);
    extra.u32(entry.owner);
    extra.u8(4);
    extra.u32(entry.group);
}

std::vector<std::byte> localExtra(const Entry& entry)
{
    std::vector<std::byte> bytes;
    ByteWriter extra(bytes);
    if (entry.needsZip64Sizes()) {
        extra.u16(ZipFormat::zip64ExtraId);
        extra.u16(zip64SizesLength);
        extra.u64(entry.size);
        extra.u64(entry.compressedSize);
    } else if (entry.reservesZip64) {
        extra.u16(paddingExtraId);
        extra.u16(zip64SizesLength);
        extra.u16(1);
        bytes.resize(bytes.size() + zip64SizesLength - 2);
    }
    appendTimeExtra(extra, entry.modified);
    appendOwnerExtra(extra, entry);
    return bytes;
}

std::vector<std::byte> centralExtra(const Entry& entry)
{
    std::vector<std::byte> zip64;
    ByteWriter values(zip64);
    for (const std::uint64_t value : {entry.size, entry.compressedSize, entry.offset})
        if (value >= mark32)
            values.u64(value);
    std::vector<std::byte> bytes;
    ByteWriter extra(bytes);
    if (!zip64.empty()) {
        extra.u16(ZipFormat::zip64ExtraId);
        extra.u16(zip64.size());
        extra.raw(zip64);
    }
    appendTimeExtra(extra, entry.modified);
    appendOwnerExtra(extra, entry);
    return bytes;
}

std::uint32_t externalAttributes(const Entry& entry)
{
    const std::uint32_t folder = entry.isFolder() ? folderAttribute : 0;
    const std::uint32_t readOnly = (entry.mode & S_IWUSR) == 0 ? readOnlyAttribute : 0;
    return (static_cast<std::uint32_t>(entry.mode) << 16) | folder | readOnly;
}

} // namespace

namespace ZipFormat
{

Entry makeEntry(std::string name, const struct stat& status)
{
    Entry entry;
    entry.name = std::move(name);
    entry.mode = status.st_mode;
    entry.modified = status.st_mtime;
    entry.dosTime = dosTimeOf(status.st_mtime);
    entry.owner = status.st_uid;
    entry.group = status.st_gid;
    return entry;
}

void appendLocalHeader(std::vector<std::byte>& bytes, const Entry& entry)
{
    const bool usesZip64 = entry.needsZip64Sizes();
    const std::vector<std::byte> extra = localExtra(entry);
    ByteWriter header(bytes);
    header.u32(localSignature);
    header.u16(versionNeeded(entry, usesZip64));
    header.u16(flagsOf(entry));
    header.u16(static_cast<std::uint16_t>(entry.method));
    header.u32(entry.dosTime);
    header.u32(entry.crc);
    header.u32(usesZip64 ? mark32 : entry.compressedSize);
    header.u32(usesZip64 ? mark32 : entry.size);
    header.u16(entry.name.size());
    header.u16(extra.size());
    header.text(entry.name);
    header.raw(extra);
}

void appendCentralRecord(std::vector<std::byte>& bytes, const Entry& entry)
{
    const bool usesZip64 = entry.needsZip64Sizes() || entry.offset >= mark32;
    const std::vector<std::byte> extra = centralExtra(entry);
    const unsigned version = versionNeeded(entry, usesZip64);
    ByteWriter record(bytes);
    record.u32(centralSignature);
    record.u16((hostUnix << 8) | std::max(version, 30U));
    record.u16(version);
    record.u16(flagsOf(entry));
    record.u16(static_cast<std::uint16_t>(entry.method));
    record.u32(entry.dosTime);
    record.u32(entry.crc);
    record.u32(marked(entry.compressedSize));
    record.u32(marked(entry.size));
    record.u16(entry.name.size());
    record.u16(extra.size());
    record.u16(0); // comment
    record.u16(0); // disk
    record.u16(0); // internal attributes
    record.u32(externalAttributes(entry));
    record.u32(marked(entry.offset));
    record.text(entry.name);
    record.raw(extra);
}

void appendEnd(
    std::vector<std::byte>& bytes, const Directory& directory, std::span<const std::byte> comment)
{
    const bool usesZip64
        = directory.entryCount >= mark16 || directory.size >= mark32 || directory.offset >= mark32;
    ByteWriter end(bytes);
    if (usesZip64) {
        end.u32(zip64EndSignature);
        end.u64(zip64EndSize - 12); // what follows this field
        end.u16((hostUnix << 8) | 45);
        end.u16(45);
        end.u32(0); // this disk, and the directory's
        end.u32(0);
        end.u64(directory.entryCount);
        end.u64(directory.entryCount);
        end.u64(directory.size);
        end.u64(directory.offset);
        end.u32(zip64LocatorSignature);
        end.u32(0);
        end.u64(directory.offset + directory.size);
        end.u32(1);
    }
    const std::uint64_t count = std::min<std::uint64_t>(directory.entryCount, mark16);
    end.u32(endSignature);
    end.u16(0);
    end.u16(0);
    end.u16(count);
    end.u16(count);
    end.u32(marked(directory.size));
    end.u32(marked(directory.offset));
    end.u16(comment.size());
    end.raw(comment);
}

} // namespace ZipFormat
