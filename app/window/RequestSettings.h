// What the settings say of a request, for the window and for what is made without one.
#pragma once

#include "app/job/ArchiveJob.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace RequestSettings
{

using Path = std::filesystem::path;

// The name that is proposed for an archive of the items, without its extension.
[[nodiscard]] std::string nameFor(const std::vector<Path>& items);

// The tag that is chosen in the destination menu (DestinationTag); one of a list that was longer
// counts as the source's folder, a negative one stays as it is.
[[nodiscard]] int selectedDestination();

// The remembered folder that is chosen there, "~" expanded; nothing where it is another choice.
[[nodiscard]] std::optional<Path> rememberedFolder();

// The archive gets the extension of its type, instead of what its name ends in.
[[nodiscard]] ArchiveJob::Request request(std::vector<Path> items, const Path& archive);

} // namespace RequestSettings
