// Panels for choosing what is there already, as sheets on a window. They return at once; the
// handler is called once, with nothing when the user cancels.
#pragma once

#include <filesystem>
#include <functional>
#include <vector>

class QWidget;

namespace OpenPanel
{

using CompletionHandler = std::function<void(const std::vector<std::filesystem::path>& paths)>;

// Also told the folder that was shown last.
using FilesHandler = std::function<void(
    const std::vector<std::filesystem::path>& paths, const std::filesystem::path& folder)>;

// Files and folders alike, any number.
void beginForFiles(
    QWidget* window, const std::filesystem::path& startingIn, FilesHandler completionHandler);

// One folder, by the desktop's own panel where its portal has one; new ones can be made in the
// panel. One question at a time for each window: another is as good as cancelled.
void beginForFolder(QWidget* window, const std::filesystem::path& startingIn,
    const CompletionHandler& completionHandler);

} // namespace OpenPanel
