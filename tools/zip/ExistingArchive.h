// What has to be known of an archive, also one made by another program, to add to it in place:
// where its central directory lies, that nothing else depends on that, and which names it holds.
//
// An archive is refused when adding could harm it: when it is damaged, when it spans several files,
// when anything lies before it, behind it, or between its directory and the end record, or when its
// directory is encrypted or signed.
#pragma once

#include "tools/zip/SpillBuffer.h"
#include "tools/zip/ZipFormat.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

struct ExistingArchive {
    ZipFormat::Directory directory;
    std::vector<std::byte> tail; // all that follows the central directory
    std::vector<std::byte> comment;
    // The first components of the entries' names as "/NAME/NAME/", repeated ones at most once in a
    // row. One text is quickly made and looked through, which counts: it is made for each item.
    std::string topNames = "/";

    // Reads the archive of `size` bytes open as `descriptor`, putting the bytes of its central
    // directory in `records`. Throws a Failure of kind BadArchive that says what is wrong.
    static ExistingArchive read(int descriptor, std::uint64_t size, SpillBuffer& records);

    [[nodiscard]] bool holds(const std::string& topName) const
    {
        return topNames.find('/' + topName + '/') != std::string::npos;
    }

    // The same names, for many questions. They point into `topNames`.
    [[nodiscard]] std::unordered_set<std::string_view> setOfTopNames() const;

private:
    void _readRecords(int descriptor, SpillBuffer& records);
    void _addName(std::string_view name);
};
