// A strict look at the structure of a zip.
#pragma once

#include <filesystem>
#include <vector>

namespace support
{

struct ZipReport {
    std::vector<std::string> complaints = {};
    std::string comment = {};
    bool hasZip64End = false;
    std::vector<std::string> entries = {}; // their names, in central order

    std::vector<std::string> names() const { return entries; }
};

// What inspect_zip.py, which shares no code with the program, has to say about an archive whose
// first `foreignEntries` were written by other programs.
ZipReport inspectZip(const std::filesystem::path& archive, std::size_t foreignEntries = 0);

} // namespace support
