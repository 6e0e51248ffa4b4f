// Lists of URIs as file managers hand them over (RFC 2483, the type text/uri-list), and the paths
// in them. Paths are bytes: what a URI escapes need not be UTF-8. Nothing is looked up on the disk.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace UriList
{

enum class Refusal {
    otherScheme, // not a file: trash:, sftp:, http:
    otherHost, // a file of another computer
    malformed, // no URI, a bad escape, a NUL, no absolute path, a query or a fragment
};

struct RefusedLine {
    std::string line; // as it stands in the list
    Refusal reason;
};

struct FilePaths {
    std::vector<std::filesystem::path> paths = {}; // in the list's order, repetitions kept
    std::vector<RefusedLine> refused = {}; // likewise
};

// `hostName` is this computer's, whose files count as local. A folder's path has no slash at its
// end.
[[nodiscard]] FilePaths filePaths(std::string_view list, std::string_view hostName);

// The file that one URI names; nothing where that is none of this computer's.
[[nodiscard]] std::optional<std::filesystem::path> filePath(
    std::string_view uri, std::string_view hostName);

// The type x-special/gnome-copied-files: such a list behind a line "copy" or "cut".
[[nodiscard]] FilePaths copiedFilePaths(std::string_view list, std::string_view hostName);

// "file://" and the bytes of an absolute path; all but letters, digits and -._~/ are escaped.
[[nodiscard]] std::string fileUri(const std::filesystem::path& path);

// Bytes as a part of a URI; what neither RFC 3986 calls unreserved nor `kept` holds is escaped.
[[nodiscard]] std::string percentEncoded(std::string_view bytes, std::string_view kept = {});

} // namespace UriList
