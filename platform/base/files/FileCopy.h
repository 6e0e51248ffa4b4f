// Copies that keep permissions, times and extended attributes.
#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>
#include <system_error>

namespace FileCopy
{

// From the one descriptor's position to its end. ECANCELED when it was asked to stop before that.
[[nodiscard]] std::error_code copyContents(int from, int to, const std::stop_token& stop = {});

// The reason given for a file that was written to meanwhile; its copy is what was read.
[[nodiscard]] std::error_code changedWhileRead();

struct Options {
    // A folder that is not copied if it lies in what is copied; nor are the copy itself and the
    // scratch folders of jobs that are under way.
    std::filesystem::path leavingOut = {};
    // Files and links become hard links of what is copied wherever that can be.
    bool linking = false;
    // What could not be copied, or not with all its attributes. A folder may have been copied in
    // part, a file not.
    std::function<void(const std::filesystem::path& item, std::error_code reason)> onFailure = {};
    // Ends the copying where it is, with ECANCELED.
    std::stop_token stop = {};
};

// A file, a link (as a link) or a folder with all that is in it, to a path that is still free.
// Goes on after a failure and gives the first one; neither files nor links are replaced. Other
// kinds of file cannot be copied.
[[nodiscard]] std::error_code copyItem(const std::filesystem::path& from,
    const std::filesystem::path& to, const Options& options = {});

} // namespace FileCopy
