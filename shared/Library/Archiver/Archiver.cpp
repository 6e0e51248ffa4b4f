#include "shared/Library/Archiver/Archiver.h"

#include "platform/base/files/FileCopy.h"
#include "platform/base/files/FileMove.h"
#include "platform/base/files/FileTree.h"
#include "platform/base/process/Task.h"
#include "platform/base/seams/AssertionHandler.h"
#include "shared/Library/Archiver/FileManagerArchiverConvenience.h"
#include "system/LastError.h"
#include "system/PathString.h"
#include "system/ScopeExit.h"

#include <sys/stat.h>
#include <unistd.h>

namespace convenience = FileManagerArchiverConvenience;

namespace
{

// What an earlier job has left there must not get into another one's archive.
std::error_code makeFreshFolder(const std::filesystem::path& path)
{
    const auto make = [&] { return errorOf(::mkdir(path.c_str(), 0777)); };
    const auto failure = make();
    if (failure != std::errc::file_exists)
        return failure;
    (void)FileTree::remove(path, FileTree::Permissions::overridden);
    return make();
}

} // namespace

Archiver::Archiver(Path workingDirectory)
    : _workingDirectory(std::move(workingDirectory))
{
}

Archiver::~Archiver() = default;

std::unique_ptr<Archiver> Archiver::init()
{
    const std::unique_ptr<Archiver> archiver(new Archiver({}));
    _reportFailure("init", archiver.get(), 657, "Archiver. Use initWithWorkingDirectory: instead");
    return nullptr;
}

std::unique_ptr<Archiver> Archiver::initWithWorkingDirectory(const std::optional<Path>& path)
{
    std::unique_ptr<Archiver> archiver(new Archiver(path.value_or(Path())));
    if (!path)
        _reportFailure("initWithWorkingDirectory:", archiver.get(), 664,
            "initWithWorkingDirectory: workingDirectory must not be nil");
    return archiver;
}

std::optional<Archiver::Path> Archiver::archiveFiles(const ArchiveFiles& job)
{
    if (job.name.value_or("").empty() || job.toFolder.value_or("").empty())
        return std::nullopt;
    // Staged under such a name, items would be put beside the working folder's contents or above
    // them, and all of that removed after the job.
    if (job.type != ArchiveTypePlainZip && (job.name == "." || job.name == ".."))
        return std::nullopt;
    _cancelFlag = false;

    std::optional<Path> result;
    int status = 0;
    if (job.type == ArchiveTypePlainZip) {
        if (_delegate)
            _delegate->setNumberOfFiles(
                convenience::numberOfFilesAtPaths(job.files, _abandoning.get_token()));
        // A leading "~" stays as it is, here and only here.
        result = job.toFolder->native() + "/" + *job.name + ".zip";
        status = createPlainZipAtPath(*result, job.files, job.excludeDSStore, job.compressionLevel);
    } else {
        const Path staged = makeTmpFolderForArchive(*job.name, job.type, job.files);
        // The links go, never what they lead to; and what is opened up are folders of the copy.
        const ScopeExit removal(
            [&] { (void)FileTree::remove(staged, FileTree::Permissions::overridden); });
        if (!_abandoning.stop_requested())
            result = archiveFile({.file = staged,
                .type = job.type,
                .excludeDSStore = job.excludeDSStore,
                .compressionLevel = job.compressionLevel,
                .toFolder = *job.toFolder,
                .withPassword = job.withPassword});
    }
    if (_delegate && _delegate->archiverCompletedWithStatus)
        _delegate->archiverCompletedWithStatus(status);
    return result;
}

std::optional<Archiver::Path> Archiver::archiveFile(const ArchiveFile& job)
{
    _cancelFlag = false; // a cancel during the staging is forgotten; that is intended
    const Path folder = PathString::stringByExpandingTildeInPath(job.toFolder.native());
    switch (job.type) {
    case ArchiveTypeTarGz:
        return createTar(job.file, job.excludeDSStore, folder);
    case ArchiveTypePlainZip:
        _reportFailure("archiveFile:type:excludeDSStore:compressionLevel:toFolder:withPassword:",
            this, 702, "Should not get here!!");
        return std::nullopt;
    case ArchiveTypeDiskImage:
        return createDMG(job.file, job.withPassword, folder);
    case ArchiveTypeMacZip:
        return createForkZip(job.file, folder);
    default:
        return std::nullopt;
    }
}

Archiver::Path Archiver::makeTmpFolderForArchive(
    const std::string& name, int type, const std::vector<Path>& dstPaths)
{
    Path staged = _workingDirectory.native() + "/" + name;
    if (const auto failure = makeFreshFolder(staged))
        _tellNotStaged(staged, failure);
    for (const Path& item : dstPaths) {
        if (_abandoning.stop_requested())
            break;
        const Path entry = staged.native() + "/" + PathString::lastPathComponent(item.native());
        if (type == ArchiveTypeMacZip)
            _stageCopy(item, entry);
        else if (::symlink(item.c_str(), entry.c_str()) != 0) // of two of one name the first stays
            _tellNotStaged(item, lastError());
    }
    if (_delegate)
        _delegate->setNumberOfFiles(
            convenience::numberOfFilesAtPath(staged, _abandoning.get_token()));
    return staged;
}

// A hard link, or a copy of what cannot be linked: a folder, whose files can, or an item on another
// file system. Of two items of one name the second stays. An item may contain the working folder:
// that is left out.
void Archiver::_stageCopy(const Path& item, const Path& entry) const
{
    if (::link(item.c_str(), entry.c_str()) == 0)
        return;
    (void)FileTree::remove(entry, FileTree::Permissions::overridden);
    (void)FileCopy::copyItem(item, entry,
        {.leavingOut = _workingDirectory,
            .linking = true,
            .onFailure
            = [this](const Path& part, std::error_code reason) { _tellNotStaged(part, reason); },
            .stop = _abandoning.get_token()});
}

void Archiver::_tellNotStaged(const Path& item, std::error_code reason) const
{
    if (_delegate && _delegate->notStaged)
        _delegate->notStaged(item, reason);
}

void Archiver::removeTmpFolder(const Path& path)
{
    int number = 511800; // an odd place to start, and a fixed one
    std::error_code missing;
    const auto aside = [&] { return Path(path.native() + "_" + std::to_string(number)); };
    while (std::filesystem::exists(aside(), missing))
        ++number;
    (void)FileMove::moveItem(path, aside());
}

void Archiver::cancel()
{
    {
        const std::lock_guard lock(_taskMutex);
        if (_task && _task->isRunning())
            _task->interrupt();
    }
    _cancelFlag = true;
}

void Archiver::abandon()
{
    _abandoning.request_stop();
    _cancelFlag = true;
    const std::lock_guard lock(_taskMutex);
    if (_task && std::chrono::steady_clock::now() >= _sparedUntil)
        _task->terminate();
}

void Archiver::_reportFailure(
    const std::string& inMethod, const Archiver* object, int lineNumber, const char* text)
{
    AssertionHandler::handleFailureInMethod({.method = inMethod,
        .object = object,
        .file = "shared/Library/Archiver",
        .lineNumber = lineNumber,
        .description = text});
}
