// Other programs that read archives.
#pragma once

#include "tests/support/TreeSnapshot.h"

namespace support
{

// In the commands, which are a shell's, $0 is the archive and $1 a folder.
struct ForeignReader {
    std::string name;
    std::string test; // status 0 when the archive is whole
    std::string extract;
    Tolerance tolerance = {}; // of what `extract` brings back
};
const std::vector<ForeignReader>& zipReaders(); // unzip, 7z, bsdtar
const std::vector<ForeignReader>& tarReaders(); // tar, bsdtar, 7z

// What is wrong with `archive` when each of the readers tests it.
std::vector<std::string> complaintsOf(
    const std::vector<ForeignReader>& readers, const std::filesystem::path& archive);

// How what a reader extracts, or says while it does, is not the tree that was archived.
std::vector<std::string> extractionFaults(const ForeignReader& reader,
    const std::filesystem::path& archive, const TreeSnapshot& expected);

} // namespace support
