// A strict look at the structure of a zip.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace support
{

struct ZipEntry {
    std::string name;
    std::int64_t localOffset;
    bool hasZip64Field;
};

struct ZipReport {
    std::vector<std::string> complaints = {};
    std::string comment = {};
    bool hasZip64End = false;
    std::vector<ZipEntry> entries = {}; // in central order

    std::vector<std::string> names() const;
};

// What inspect_zip.py, which shares no code with the program, has to say about an archive whose
// first `foreignEntries` were written by other programs.
ZipReport inspectZip(const std::filesystem::path& archive, std::size_t foreignEntries = 0);

} // namespace support
