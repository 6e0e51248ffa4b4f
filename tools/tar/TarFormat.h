// The headers of a tar archive: ustar (POSIX.1-1988) in blocks of 512 bytes, and before an entry
// whose numbers or names do not fit there, or whose time has a fraction of a second, a pax extended
// header (POSIX.1-2001) with just those.
// Names are bytes as the file system has them. Owners are written as numbers only: names of one
// machine's users mean nothing on another.
#pragma once

#include "system/FileStatus.h"
#include "tools/common/ByteBuffer.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace TarFormat
{

inline constexpr std::size_t blockSize = 512;

// Tapes were written in records of 20 blocks, and readers still expect a whole number of them.
inline constexpr std::size_t recordSize = 20 * blockSize;

enum class Type : char { file = '0', hardLink = '1', link = '2', folder = '5' };

struct Entry {
    Type type = Type::file;
    std::string name; // folders end in a slash
    std::string linkTarget; // of a hard link, the name of the entry that it is another name of
    std::uint64_t size = 0; // of the content that follows, without its padding
    FileStatus status{};
};

// The blocks before the entry's content.
ByteBuffer header(const Entry& entry);

// How many zero bytes follow a content of that size.
std::size_t padding(std::uint64_t size);

} // namespace TarFormat
