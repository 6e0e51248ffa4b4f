#pragma once

#include <filesystem>
#include <string>
#include <vector>

// The name proposed for an archive of the items: a single item's own, without its extension unless
// that is to be kept, else "Untitled". Cut, between characters, to what a file name that ends in
// the archive's extension can hold.
[[nodiscard]] std::string proposedName(const std::vector<std::filesystem::path>& items,
    bool keepsExtension, const std::string& archiveExtension);
