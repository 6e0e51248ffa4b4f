// The file that keeps what another file has besides its contents, for systems and archives that
// have no place for that: an AppleDouble header file, version 2 (RFC 1740, appendix B), with
// extended attributes in the form in which macOS writes and reads them (described at the head of
// bsd/vfs/vfs_xattr.c in its published kernel sources). Big-endian throughout:
//
//     0  magic, version, 16 bytes of filler, count of entries (2), and of each entry the kind,
//        offset and length:
//    26    kind 9, Finder information: from 50 to the end of the attributes' values
//    38    kind 2, resource fork: what follows these; may be empty
//    50  Finder information, 32 bytes, and 2 of padding
//    84  "ATTR", a tag, end of the values, begin and length of the values, 12 bytes, flags, count
//   120  of each attribute: offset and length of the value, flags, length of the name with its
//        NUL, the name, zeros up to a multiple of 4
//        the values
//        the resource fork
//
// Readers want the two entries in this order, the head up to the values within 64 KiB, and names of
// at most 127 bytes. The resource fork and the Finder information are themselves attributes, known
// by their names. One of the latter's name with another size must not be among the attributes: the
// system refuses it, and macOS's reader (copyfile.c in its published sources) then gives up all
// that would follow.
#pragma once

#include "tools/common/ByteBuffer.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class AppleDouble
{
public:
    static constexpr std::string_view finderInformationName = "com.apple.FinderInfo";
    static constexpr std::string_view resourceForkName = "com.apple.ResourceFork";
    static constexpr std::size_t finderSize = 32;

    static constexpr std::uint32_t magic = 0x00051607;
    static constexpr std::uint32_t version = 0x00020000;
    static constexpr std::uint32_t finderKind = 9;
    static constexpr std::uint32_t resourceForkKind = 2;

    // False if there is no room left for it or no form in which readers would take it.
    [[nodiscard]] bool add(std::string_view name, std::span<const std::byte> value);
    [[nodiscard]] bool isEmpty() const { return !_hasAny; }
    [[nodiscard]] ByteBuffer bytes() const;

private:
    struct Attribute {
        std::string name;
        std::size_t size;
    };
    bool _addAttribute(std::string_view name, std::span<const std::byte> value);
    [[nodiscard]] std::size_t _totalSize() const;

    ByteBuffer _finderInformation; // none or 32 bytes
    ByteBuffer _resourceFork;
    std::vector<Attribute> _attributes;
    ByteBuffer _values;
    std::size_t _headSize = 120;
    bool _hasAny = false;
};
