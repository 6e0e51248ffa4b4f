// What both fronts know of each type of archive besides how it is made: one row a type. The level
// and the junk rule are the zip's and the tarball's; the password is the disk image's.
#pragma once

#include <string_view>
#include <vector>

struct ArchiveKind {
    int type; // an ArchiveType
    std::string_view word; // on the command line
    std::string_view extension; // of the file, with its dot
    std::string_view tool; // that makes it, by its name
    std::vector<int> leftOutStatuses; // of the tool: made, but something that it named is missing

    // Nothing for a number or a word that stands for no type.
    [[nodiscard]] static const ArchiveKind* ofType(int type);
    [[nodiscard]] static const ArchiveKind* named(std::string_view word);
};
