// Paths as byte strings, taken apart by the rules of file-name components: slashes at the end do
// not count, and nothing is looked up besides home folders.
#pragma once

#include <string>
#include <string_view>

namespace PathString
{

// "/tmp/a.txt" -> "a.txt", "/tmp/" -> "tmp", "/" -> "/".
[[nodiscard]] std::string lastPathComponent(std::string_view path);

// "/tmp/a.txt" -> "/tmp", "/tmp" -> "/", "a.txt" -> "".
[[nodiscard]] std::string stringByDeletingLastPathComponent(std::string_view path);

// Where a path's last component lies, as it can be opened: "/tmp/a.txt" -> "/tmp", "a.txt" -> ".".
[[nodiscard]] std::string folderOf(std::string_view path);

// "a.tar.gz" -> "a.tar", "/tmp/a.b/" -> "/tmp/a"; a name's first or last dot starts no extension.
[[nodiscard]] std::string stringByDeletingPathExtension(std::string_view path);

// ".gz" for "a.tar.gz", with its dot, so that it can be appended again; empty without an extension.
[[nodiscard]] std::string dottedExtension(std::string_view path);

// "/tmp" and "a/" -> "/tmp/a", "/" and "a" -> "/a", "" and "a" -> "a".
[[nodiscard]] std::string stringByAppendingPathComponent(
    std::string_view path, std::string_view component);

// "~/a" and "~user/a" with the home folder; unchanged when there is none.
[[nodiscard]] std::string stringByExpandingTildeInPath(std::string_view path);

} // namespace PathString
