// What has to be known of an archive, also one made by another program, to add to it in place:
// where its central directory lies, that nothing else depends on that, and which names it holds.
//
// An archive is refused when adding could harm it: when it is damaged, when it spans several files,
// when anything lies before it, behind it, or between its directory and the end record, or when its
// directory is encrypted or signed.
#pragma once

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
    bool holdsItem = false; // an entry of the name that was asked for, or below it

    // Reads the archive of `size` bytes open as `descriptor`, and looks for the item, one name.
    // Throws a Failure of kind BadArchive that says what is wrong.
    static ExistingArchive read(int descriptor, std::uint64_t size, std::string_view item);

    // The first components of all names in it, for many questions: read anew.
    [[nodiscard]] std::unordered_set<std::string> topNames(int descriptor) const;
};
