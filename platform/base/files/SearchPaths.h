// The places that the system sets aside for a purpose.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace SearchPaths
{

// Kinds of folder, by the numbers they are stored and passed by.
enum class Directory : unsigned {
    documents = 9,
    desktop = 12,
    caches = 13,
    applicationSupport = 14,
    downloads = 15,
    movies = 17,
    music = 18,
    pictures = 19,
};

// A set of bits. Only the user has folders of these kinds of his own.
enum class DomainMask : unsigned { user = 1, local = 2, network = 4, system = 8 };

// $TMPDIR when that is an absolute path: the temporary folder that the user has to himself.
[[nodiscard]] std::optional<std::filesystem::path> userTemporaryDirectory();

// The same, else /tmp, which is everybody's.
[[nodiscard]] std::filesystem::path temporaryDirectory();

// The folders of a kind, which need not exist; none for a kind or a domain that has none, or when
// the user's home folder is not known. Application support is $XDG_DATA_HOME and caches are
// $XDG_CACHE_HOME, by the XDG Base Directory Specification; the others are what xdg-user-dirs keeps
// in user-dirs.dirs, or else the folder of the usual English name in the home folder.
[[nodiscard]] std::vector<std::filesystem::path> directories(
    Directory directory, DomainMask inDomain);

} // namespace SearchPaths
