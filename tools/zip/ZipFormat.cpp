#include "tools/zip/ZipFormat.h"

#include "system/Utf8.h"

#include <algorithm>
#include <optional>

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
    return entry.method == Method::deflated || entry.isFolder() ? 20 : 10;
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
    std::tm local{};
    if (::localtime_r(&time, &local) == nullptr)
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

// As NTFS counts it, in 100 ns since 1601, which some readers take for a signed number. None for a
// time that this can't tell.
std::optional<std::uint64_t> ntfsTime(const timespec& time)
{
    constexpr std::int64_t secondsFrom1601 = 11'644'473'600;
    constexpr std::int64_t ticksPerSecond = 10'000'000;
    constexpr std::int64_t end = INT64_MAX / ticksPerSecond - secondsFrom1601;
    if (time.tv_sec < -secondsFrom1601 || time.tv_sec >= end)
        return std::nullopt;
    const std::int64_t seconds = time.tv_sec + secondsFrom1601;
    return static_cast<std::uint64_t>(seconds * ticksPerSecond + time.tv_nsec / 100);
}

void appendTimeExtra(ByteBuffer& extra, const timespec& modified)
{
    if (modified.tv_sec >= 0 && modified.tv_sec <= INT32_MAX) {
        extra.u16(timestampExtraId);
        extra.u16(5);
        extra.u8(1); // only the modification time
        extra.u32(static_cast<std::uint64_t>(modified.tv_sec));
        return;
    }
    const std::optional<std::uint64_t> ticks = ntfsTime(modified);
    if (!ticks)
        return;
    extra.u16(ntfsExtraId);
    extra.u16(32);
    extra.u32(0);
    extra.u16(1); // the times
    extra.u16(24);
    for (int kind = 0; kind < 3; ++kind) // modified, accessed, created: only the first is known
        extra.u64(*ticks);
}

void appendOwnerExtra(ByteBuffer& extra, const Entry& entry)
{
    extra.u16(ownerExtraId);
    extra.u16(11);
    extra.u8(1);
    extra.u8(4);
    extra.u32(entry.owner);
    extra.u8(4);
    extra.u32(entry.group);
}

ByteBuffer localExtra(const Entry& entry)
{
    ByteBuffer extra;
    if (entry.needsZip64Sizes()) {
        extra.u16(ZipFormat::zip64ExtraId);
        extra.u16(zip64SizesLength);
        extra.u64(entry.size);
        extra.u64(entry.compressedSize);
    } else if (entry.reservesZip64) {
        extra.u16(paddingExtraId);
        extra.u16(zip64SizesLength);
        extra.u16(1);
        extra.zeros(zip64SizesLength - 2);
    }
    appendTimeExtra(extra, entry.modified);
    appendOwnerExtra(extra, entry);
    return extra;
}

ByteBuffer centralExtra(const Entry& entry)
{
    ByteBuffer zip64;
    for (const std::uint64_t value : {entry.size, entry.compressedSize, entry.offset})
        if (value >= mark32)
            zip64.u64(value);
    ByteBuffer extra;
    if (zip64.size() > 0) {
        extra.u16(ZipFormat::zip64ExtraId);
        extra.u16(zip64.size());
        extra.append(zip64);
    }
    appendTimeExtra(extra, entry.modified);
    appendOwnerExtra(extra, entry);
    return extra;
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

Entry makeEntry(std::string name, const FileStatus& status)
{
    Entry entry;
    entry.name = std::move(name);
    entry.mode = status.st_mode;
    entry.modified = status.st_mtim;
    entry.dosTime = dosTimeOf(status.st_mtime);
    entry.owner = status.st_uid;
    entry.group = status.st_gid;
    return entry;
}

void appendLocalHeader(ByteBuffer& bytes, const Entry& entry)
{
    const bool usesZip64 = entry.needsZip64Sizes();
    const ByteBuffer extra = localExtra(entry);
    bytes.u32(localSignature);
    bytes.u16(versionNeeded(entry, usesZip64));
    bytes.u16(flagsOf(entry));
    bytes.u16(static_cast<std::uint16_t>(entry.method));
    bytes.u32(entry.dosTime);
    bytes.u32(entry.crc);
    bytes.u32(usesZip64 ? mark32 : entry.compressedSize);
    bytes.u32(usesZip64 ? mark32 : entry.size);
    bytes.u16(entry.name.size());
    bytes.u16(extra.size());
    bytes.text(entry.name);
    bytes.append(extra);
}

void appendCentralRecord(ByteBuffer& bytes, const Entry& entry)
{
    const ByteBuffer extra = centralExtra(entry);
    const unsigned version = versionNeeded(entry, entry.needsZip64());
    bytes.u32(centralSignature);
    bytes.u16((hostUnix << 8) | std::max(version, 30U));
    bytes.u16(version);
    bytes.u16(flagsOf(entry));
    bytes.u16(static_cast<std::uint16_t>(entry.method));
    bytes.u32(entry.dosTime);
    bytes.u32(entry.crc);
    bytes.u32(marked(entry.compressedSize));
    bytes.u32(marked(entry.size));
    bytes.u16(entry.name.size());
    bytes.u16(extra.size());
    bytes.u16(0); // comment
    bytes.u16(0); // disk
    bytes.u16(0); // internal attributes
    bytes.u32(externalAttributes(entry));
    bytes.u32(marked(entry.offset));
    bytes.text(entry.name);
    bytes.append(extra);
}

void appendEnd(ByteBuffer& bytes, const Directory& directory, std::span<const std::byte> comment)
{
    const bool usesZip64 = directory.usesZip64 || directory.entryCount >= mark16
        || directory.size >= mark32 || directory.offset >= mark32;
    if (usesZip64) {
        bytes.u32(zip64EndSignature);
        bytes.u64(zip64EndSize - 12); // what follows this field
        bytes.u16((hostUnix << 8) | 45);
        bytes.u16(45);
        bytes.u32(0); // this disk, and the directory's
        bytes.u32(0);
        bytes.u64(directory.entryCount);
        bytes.u64(directory.entryCount);
        bytes.u64(directory.size);
        bytes.u64(directory.offset);
        bytes.u32(zip64LocatorSignature);
        bytes.u32(0);
        bytes.u64(directory.offset + directory.size);
        bytes.u32(1);
    }
    const std::uint64_t count = std::min<std::uint64_t>(directory.entryCount, mark16);
    bytes.u32(endSignature);
    bytes.u16(0);
    bytes.u16(0);
    bytes.u16(count);
    bytes.u16(count);
    bytes.u32(marked(directory.size));
    bytes.u32(marked(directory.offset));
    bytes.u16(comment.size());
    bytes.append(comment);
}

} // namespace ZipFormat
