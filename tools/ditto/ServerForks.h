// What file servers for Macs keep in extended attributes of their own of a file's two parts that
// other systems have no place for. (As of Samba 4.20 and netatalk 3.1: vfs_fruit(8),
// vfs_streams_xattr(8), and the headers MacExtensions.h of Samba and adouble.h of both.)
//
//     DosStream.AFP_Resource:$DATA   the resource fork and a NUL; another byte instead of that
//                                    counts further attributes with the rest
//     DosStream.AFP_AfpInfo:$DATA    60 bytes and the NUL: "AFP" and NUL, version, 4 reserved, date
//                                    of the last backup, 32 of Finder information, 12 of others
//     org.netatalk.ResourceFork      the resource fork
//     org.netatalk.Metadata          an AppleDouble header, whose entry of kind 9 is the Finder
//                                    information
//
// Names are without "user.", numbers big-endian. The bytes are anybody's: what is not of such a
// form is an attribute like others.
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ServerForks
{

// Attributes by name.
using Attributes = std::map<std::string, std::vector<std::byte>, std::less<>>;

// Whether it is one of these, or the Mac's own of one of the parts.
bool concern(std::string_view name);

// Gives a file the Mac's own attributes of what it has only in one of these. Of several the Mac's
// own counts, then Samba's. Those that hold nothing else are removed: what differs, or what
// netatalk notes besides (dates, a comment), is kept.
void translate(Attributes& attributes);

} // namespace ServerForks
