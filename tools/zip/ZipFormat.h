// The records of a zip archive (PKWARE APPNOTE.TXT 6.3), little-endian throughout:
//
//   local header, name, extra fields, data       for each entry, one after the other
//   central directory record, name, extra fields for each entry again
//   zip64 end of central directory and locator   only when a number in any record does
//                                                not fit
//   end of central directory, comment
//
// What we write: sizes and checksum always in the local header, so no data descriptors. Names are
// bytes as the file system has them, with the UTF-8 flag exactly when they are UTF-8 and not plain
// ASCII. Unix modes in the external attributes. Times in UTC: to the second in an extended
// timestamp (0x5455) where its signed 32 bits hold them, else to 100 ns in an NTFS field (0x000a);
// those before 1601 or after 30828 only as the nearest that the old fields hold. Owner and group in
// 0x7875. A number of 0xFFFFFFFF (0xFFFF for a count) is the mark that the zip64 field holds it, so
// that very value takes zip64 too. Some readers believe the zip64 fields of a record only where the
// archive has a zip64 end, so it has one for these, too.
#pragma once

#include "system/FileStatus.h"
#include "tools/common/ByteBuffer.h"

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

namespace ZipFormat
{

inline constexpr std::uint32_t localSignature = 0x04034b50;
inline constexpr std::uint32_t centralSignature = 0x02014b50;
inline constexpr std::uint32_t endSignature = 0x06054b50;
inline constexpr std::uint32_t zip64EndSignature = 0x06064b50;
inline constexpr std::uint32_t zip64LocatorSignature = 0x07064b50;

inline constexpr std::size_t centralSize = 46; // without name, extra fields and comment
inline constexpr std::size_t endSize = 22; // without the comment
inline constexpr std::size_t zip64EndSize = 56;
inline constexpr std::size_t zip64LocatorSize = 20;

inline constexpr std::uint32_t mark32 = 0xffffffff;
inline constexpr std::uint16_t mark16 = 0xffff;
inline constexpr std::uint16_t zip64ExtraId = 0x0001;
inline constexpr std::size_t longestName = 0xffff;

enum class Method : std::uint16_t { stored = 0, deflated = 8 };

struct Entry {
    std::string name; // folders end in a slash
    Method method = Method::stored;
    std::uint32_t crc = 0;
    std::uint64_t size = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t offset = 0; // of the local header
    mode_t mode = 0;
    timespec modified{};
    std::uint32_t dosTime = 0; // date in the high half; local time, even seconds
    uid_t owner = 0;
    gid_t group = 0;
    // The sizes are written when they are known, and may need zip64 by then.
    bool reservesZip64 = false;

    [[nodiscard]] bool isFolder() const { return S_ISDIR(mode); }
    [[nodiscard]] bool needsZip64Sizes() const
    {
        return size >= mark32 || compressedSize >= mark32;
    }
    [[nodiscard]] bool needsZip64() const { return needsZip64Sizes() || offset >= mark32; }
};

// An entry for something of that name and status, sizes and checksum still to come.
Entry makeEntry(std::string name, const FileStatus& status);

// Appends the local header with name and extra fields. Its size depends on the sizes only where
// zip64 is not reserved for them.
void appendLocalHeader(ByteBuffer& bytes, const Entry& entry);
void appendCentralRecord(ByteBuffer& bytes, const Entry& entry);

struct Directory {
    std::uint64_t entryCount = 0;
    std::uint64_t size = 0; // of the central directory, in bytes
    std::uint64_t offset = 0;
    bool usesZip64 = false; // a record does, or the end has done so before
};

// Appends what follows the central directory: the end record, and the zip64 ones when needed.
void appendEnd(ByteBuffer& bytes, const Directory& directory, std::span<const std::byte> comment);

} // namespace ZipFormat
