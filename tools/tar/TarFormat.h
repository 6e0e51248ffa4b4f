// The headers of a tar archive: ustar (POSIX.1-1988) in blocks of 512 bytes, and before an entry
// whose numbers or names do not fit there a pax extended header (POSIX.1-2001) with just those.
// Names are bytes as the file system has them. Owners are written as numbers only: names of one
// machine's users mean nothing on another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace TarFormat
{

inline constexpr std::size_t blockSize = 512;

// Tapes were written in records of 20 blocks, and readers still expect a whole number of them.
inline constexpr std::size_t recordSize = 20 * blockSize;

enum class Type : char { File = '0', HardLink = '1', Link = '2', Folder = '5' };

struct Entry {
    Type type = Type::File;
    std::string name; // folders end in a slash
    std::string
        linkTarget; // of a link; of a hard link, the name of the entry it is another name of
    std::uint64_t size = 0; // of the content that follows, without its padding
    struct stat status {
    };
};

// The blocks before the entry's content.
std::vector<std::byte> header(const Entry& entry);

// How many zero bytes follow a content of that size.
std::size_t padding(std::uint64_t size);

} // namespace TarFormat
