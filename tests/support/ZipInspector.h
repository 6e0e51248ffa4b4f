#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace support
{

using ZipExtras = std::map<std::uint16_t, std::string>;

struct ZipEntry {
    std::string name;
    std::uint16_t versionNeeded = 0;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t size = 0;
    std::uint64_t localOffset = 0;
    unsigned mode = 0;
    std::int64_t time = 0; // seconds since 1970, from the extra fields
    std::int64_t dosDate = 0;
    ZipExtras extras = {}; // of the central record
};

struct ZipReport {
    std::vector<ZipEntry> entries = {}; // in central order
    std::vector<std::string> complaints = {};
    std::string comment = {};
    bool hasZip64End = false;

    std::vector<std::string> names() const;
};

// Looks at every byte that is not file data, with none of the program's own code. Local and central
// records must agree, the records and their data must fill the file without gap or overlap, and
// entries must be written as this program writes them: sizes in the local record, zip64 only when
// a number needs it, bit 11 for the names that need it, times that do not wrap. The first
// `foreignEntries` were written by other programs: only their place is checked.
ZipReport inspectZip(const std::filesystem::path& archive, std::size_t foreignEntries = 0);

} // namespace support
