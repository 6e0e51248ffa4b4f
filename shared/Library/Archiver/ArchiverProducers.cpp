// The producers of zips and tarballs: where each tool is, its arguments in full and in order, and
// the folder it works in.

#include "platform/base/bundle/Bundle.h"
#include "platform/base/files/FileMove.h"
#include "platform/base/files/FileTree.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/base/seams/MainQueue.h"
#include "shared/Library/Archiver/Archiver.h"
#include "shared/Library/Archiver/FileManagerArchiverConvenience.h"
#include "system/PathString.h"

#include <chrono>
#include <map>

#include <unistd.h>

namespace convenience = FileManagerArchiverConvenience;
using PathString::lastPathComponent;
using PathString::stringByDeletingLastPathComponent;

namespace
{

constexpr std::chrono::milliseconds alertDelay{100};

void showAlertLater(const std::string& message, const std::filesystem::path& archive)
{
    MainQueue::dispatchAfter(alertDelay, [message, archive] {
        AlertPanel::runAlertPanel({.title = "Error",
            .message = message,
            .path = archive.native(),
            .defaultButton = "OK",
            .alternateButton = "",
            .otherButton = ""});
    });
}

bool isExecutable(const std::filesystem::path& path)
{
    return ::access(path.c_str(), X_OK) == 0;
}

} // namespace

const Archiver::Path& Archiver::zipPath()
{
    static const Path path = Bundle::main().pathForResource("zip").value_or("/usr/bin/zip");
    return path;
}

std::optional<Archiver::Path> Archiver::tarPath()
{
    return Bundle::main().pathForResource("tar");
}

// Nothing replaces the disk-image tool: the program has no resource of that name.
std::optional<Archiver::Path> Archiver::pathForTool(const Path& fixedPath)
{
    if (isExecutable(fixedPath))
        return fixedPath;
    const auto own = Bundle::main().pathForResource(lastPathComponent(fixedPath.native()));
    return own && isExecutable(*own) ? own : std::nullopt;
}

std::optional<Archiver::Path> Archiver::missingTool(int type)
{
    static const std::map<int, std::vector<Path>> tools{
        {ArchiveTypeDiskImage, {"/usr/bin/hdiutil", "/usr/bin/ditto", "/usr/bin/du"}},
        {ArchiveTypeMacZip, {"/usr/bin/ditto"}},
    };
    if (const auto needed = tools.find(type); needed != tools.end())
        for (const Path& tool : needed->second)
            if (!pathForTool(tool))
                return tool;
    return std::nullopt;
}

bool Archiver::addToZip(
    const Path& archive, const Path& sourcePath, bool excludeDSStore, int compressionLevel)
{
    std::vector<std::string> arguments;
    if (compressionLevel >= 0)
        arguments.push_back("-" + std::to_string(compressionLevel));
    arguments.insert(arguments.end(),
        {"-y", "-r", archive.native(), "./" + lastPathComponent(sourcePath.native())});
    if (excludeDSStore)
        arguments.insert(arguments.end(), {"-x", "*/.DS_Store"});
    // In the item's own folder: entries are stored under the item's name.
    runCommand(
        zipPath(), arguments, stringByDeletingLastPathComponent(sourcePath.native()), nullptr);
    return true;
}

int Archiver::createPlainZipAtPath(const Path& archive, const std::vector<Path>& sourcePaths,
    bool excludeDSStore, int compressionLevel)
{
    const Path temporary = _workingDirectory.native() + "/" + lastPathComponent(archive.native());
    convenience::removeItemAtPath(temporary);
    int status = 0;
    try {
        for (const Path& item : sourcePaths) {
            if (_cancelFlag || _abandoning.stop_requested()) {
                convenience::removeItemAtPath(temporary);
                status = 1;
                break;
            }
            addToZip(temporary, item, excludeDSStore, compressionLevel);
        }
    } catch (...) {
        convenience::removeItemAtPath(temporary);
        throw;
    }
    if (_abandoning.stop_requested()) {
        convenience::removeItemAtPath(temporary);
        return 1;
    }
    _replaceArchive(archive, temporary);
    return status;
}

// Also after a cancel, when there is nothing to replace the archive by: then an older one is
// removed, and the alert tells that nothing could be written. That is intended.
void Archiver::_replaceArchive(const Path& archive, const Path& byArchive) const
{
    std::error_code missing;
    const bool isThere = std::filesystem::exists(archive, missing);
    if (isThere) {
        if (const auto failure = FileTree::remove(archive)) {
            _tellNotMoved("Unable to replace existing file at '%1'", archive, failure);
            return;
        }
    }
    // Once the older one is gone only the new one can make up for it.
    const std::stop_token stop = isThere ? std::stop_token() : _abandoning.get_token();
    const auto failure = FileMove::moveItem(byArchive, archive, stop);
    if (!failure)
        return;
    if (stop.stop_requested())
        convenience::removeItemAtPath(byArchive);
    else
        _tellNotMoved("Unable to write to '%1'", archive, failure);
}

void Archiver::_tellNotMoved(
    const std::string& message, const Path& archive, std::error_code reason) const
{
    if (!_delegate || !_delegate->notMoved || !_delegate->notMoved(reason))
        showAlertLater(message, _archiveInAlerts.value_or(archive));
}

std::optional<Archiver::Path> Archiver::createForkZip(const Path& staged, const Path& toFolder)
{
    if (missingTool(ArchiveTypeMacZip))
        return std::nullopt;
    const std::string name = lastPathComponent(staged.native());
    const Path archive = toFolder.native() + "/" + name + ".zip";
    convenience::removeItemAtPath(archive);
    runCommand(pathForTool("/usr/bin/ditto"),
        {"-V", "-c", "-k", "--keepParent", "--sequesterRsrc", "./" + name, archive.native()},
        stringByDeletingLastPathComponent(staged.native()), nullptr);
    return archive;
}

std::optional<Archiver::Path> Archiver::createTar(
    const Path& staged, bool excludeDSStore, const Path& toFolder)
{
    const std::string name = lastPathComponent(staged.native());
    const Path archive = toFolder.native() + "/" + name + ".tar.gz";
    std::vector<std::string> arguments;
    if (excludeDSStore)
        arguments = {"--exclude", ".DS_Store"};
    // -h: what the staged links lead to is archived, not the links.
    arguments.insert(arguments.end(), {"-zhcf", archive.native(), name});
    convenience::removeItemAtPath(archive);
    runCommand(tarPath(), arguments, stringByDeletingLastPathComponent(staged.native()), nullptr);
    return archive;
}
