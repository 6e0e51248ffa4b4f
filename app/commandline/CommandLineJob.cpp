#include "app/commandline/CommandLineJob.h"

#include "app/job/DocumentPath.h"
#include "app/job/ProposedName.h"
#include "platform/base/files/ScratchFolder.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/base/seams/MainQueue.h"
#include "shared/Library/Archiver/FileManagerArchiverConvenience.h"
#include "system/PathString.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <iostream>
#include <map>
#include <set>
#include <thread>
#include <utility>

#include <unistd.h>

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace
{

constexpr auto redrawInterval = 100ms; // quick enough to look alive
constexpr auto abandonInterval = 200ms; // a tool may need several interrupts

using FileStatus = struct stat;

enum ExitStatus : int { exitMade = 0, exitFailed = 1, exitInterrupted = 130 };

struct Tool {
    std::string name;
    std::string purpose;
    std::vector<int> skips; // statuses that mean: made, with something left out
};

const Tool& toolFor(int type)
{
    static const std::map<int, Tool> tools{
        {ArchiveTypePlainZip, {"zip", "zip", {12, 18}}},
        {ArchiveTypeTarGz, {"tar", "tar", {1}}},
        {ArchiveTypeMacZip, {"ditto", "mac-zip", {1}}},
        {ArchiveTypeDiskImage, {"hdiutil", "disk-image", {}}},
    };
    return tools.at(type);
}

// Always false, for the checks that end with it.
bool complain(std::string message)
{
    // Control bytes of a name could move the cursor of a terminal, or worse.
    std::ranges::replace_if(message, ToolMessages::isControl, '?');
    std::cerr << "parcelo: " << message << "\n" << std::flush;
    return false;
}

bool complain(const fs::path& path, int reason)
{
    return complain("'" + path.native() + "': " + std::strerror(reason));
}

std::optional<FileStatus> statusOf(const fs::path& path)
{
    FileStatus status{};
    if (::lstat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status;
}

bool isSameFile(const FileStatus& one, const FileStatus& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

} // namespace

CommandLineJob::CommandLineJob(CommandLine line)
    : _line(std::move(line))
    , _messages(toolFor(_line.type).name)
    , _progress(_line.quiet)
{
}

int CommandLineJob::run()
{
    if (!_hasTool() || !_resolveFiles() || !_chooseArchive())
        return exitFailed;
    {
        const ScratchFolder workingFolder;
        _makeArchive(workingFolder.path());
    }
    return _report();
}

bool CommandLineJob::_hasTool() const
{
    if (const auto missing = Archiver::missingTool(_line.type))
        return complain("this system has no " + toolFor(_line.type).purpose + " tool ("
            + missing->native() + ")");
    if (_line.type == ArchiveTypeTarGz && !Archiver::tarPath())
        return complain("the tar tool is missing from the program's resources");
    return true;
}

bool CommandLineJob::_resolveFiles()
{
    bool complete = true;
    for (const Path& file : _line.files) {
        if (!statusOf(file))
            complete = complain(file, errno);
        else if (PathString::lastPathComponent(file.native()) == "/")
            complete = complain("'/' has no name to be archived under");
        else {
            std::error_code failure;
            _files.push_back(documentPath(file, failure));
            if (failure)
                complete = complain(file, failure.value());
        }
    }
    return complete && (_line.type == ArchiveTypePlainZip || _canBeStaged());
}

// The engine stages items as links in one folder and passes over what does not fit there.
bool CommandLineJob::_canBeStaged() const
{
    bool complete = true;
    std::set<std::string> names;
    for (const Path& file : _files) {
        std::error_code missing;
        const fs::file_status target = fs::status(file, missing);
        if (!fs::is_regular_file(target) && !fs::is_directory(target))
            complete = complain("'" + file.native() + "' leads to no file or folder");
        else if (!names.insert(PathString::lastPathComponent(file.native())).second)
            complete = complain("'" + file.native() + "' has the name of another item");
    }
    return complete;
}

bool CommandLineJob::_chooseArchive()
{
    std::error_code missing;
    _folder = fs::canonical(*_line.toFolder, missing);
    if (missing)
        return complain(*_line.toFolder, missing.value());
    if (!fs::is_directory(_folder))
        return complain(*_line.toFolder, ENOTDIR);
    if (::access(_folder.c_str(), W_OK | X_OK) != 0)
        return complain(*_line.toFolder, errno);

    _name = _line.name.value_or(proposedName(_files, false, _line.extension()));
    _archive = _folder / (_name + _line.extension());
    _former = statusOf(_archive);
    if (_former && S_ISDIR(_former->st_mode))
        return complain(_archive, EISDIR);
    const auto isFormer = [&](const Path& file) {
        const auto status = statusOf(file);
        return _former && status && isSameFile(*_former, *status);
    };
    if (std::ranges::any_of(_files, isFormer))
        return complain("'" + _archive.native() + "' would replace a file that is to be archived");
    return true;
}

void CommandLineJob::_makeArchive(const Path& workingFolder)
{
    const auto archiver = Archiver::initWithWorkingDirectory(workingFolder);
    archiver->setDelegate(_delegate());
    std::optional<std::string> password;
    if (_line.passwordFromInput)
        std::getline(std::cin, password.emplace());

    AlertPanel::setPresenter([this](const AlertPanel::Alert& alert) {
        if (!_isInterrupted)
            complain(alert.title + ": " + alert.message);
        return int{AlertPanel::answerDefault};
    });
    MainQueue::setSubmitter([this](std::chrono::nanoseconds delay, MainQueue::Block block) {
        _loop.submitAfter(delay, std::move(block));
    });
    _loop.watch(_signals.descriptor(), [&] {
        if (_signals.take() && !std::exchange(_isInterrupted, true))
            _abandonUntilEnded(*archiver);
    });
    _drawUntilEnded();

    std::jthread worker([&] {
        try {
            archiver->archiveFiles({.files = _files,
                .name = _name,
                .type = _line.type,
                .excludeDSStore = _line.excludeDSStore,
                .compressionLevel = _line.level,
                .toFolder = _folder,
                .withPassword = password});
        } catch (const std::exception& failure) {
            _failure = failure.what();
        }
        _loop.submitAfter(0ns, [this] { _isEnded = true; });
    });
    _loop.runUntil([this] { return _isEnded; });
    worker.join();
    _progress.clear();
    if (!_isInterrupted && !_isMade())
        _loop.drain(); // an alert is on its way and tells why
    MainQueue::setSubmitter({});
    AlertPanel::setPresenter({});
}

ArchiverDelegate CommandLineJob::_delegate()
{
    return {
        .setNumberOfFiles =
            [this](int count) {
                // Of staged items it is the links that were counted, while the tool tells of the
                // folder that holds them and of all that is in them.
                if (_line.type != ArchiveTypePlainZip && _progress.isShown())
                    count = FileManagerArchiverConvenience::numberOfFilesAtPaths(_files) + 1;
                _progress.setTotal(count);
            },
        .progressBy = [this](int lines) { _progress.advanceBy(lines); },
        .taskCompletedWithStatusCode = [this](int status) { _noteStatus(status); },
        .toolOutput = [this](std::string_view bytes) { _messages.addOutput(bytes); },
        .notStaged =
            [this](const Path& item, std::error_code reason) {
                _messages.add("'" + item.native() + "' is left out: " + reason.message());
                _hasSkipped = true;
            },
    };
}

void CommandLineJob::_noteStatus(int status)
{
    _messages.taskCompleted(status);
    const auto& skips = toolFor(_line.type).skips;
    if (status == 0)
        return;
    (std::ranges::find(skips, status) != skips.end() ? _hasSkipped : _hasFailed) = true;
}

void CommandLineJob::_abandonUntilEnded(Archiver& archiver)
{
    if (_isEnded)
        return;
    archiver.abandon();
    _loop.submitAfter(abandonInterval, [this, &archiver] { _abandonUntilEnded(archiver); });
}

void CommandLineJob::_drawUntilEnded()
{
    if (_isEnded)
        return;
    _progress.draw();
    _loop.submitAfter(redrawInterval, [this] { _drawUntilEnded(); });
}

// By this job, not before it: the new file may have the old one's inode, but not its change time.
bool CommandLineJob::_isMade() const
{
    const auto status = statusOf(_archive);
    if (!status)
        return false;
    return !_former || !isSameFile(*status, *_former)
        || status->st_ctim.tv_sec != _former->st_ctim.tv_sec
        || status->st_ctim.tv_nsec != _former->st_ctim.tv_nsec;
}

int CommandLineJob::_report()
{
    if (!_isInterrupted)
        for (const std::string& line : _messages.lines())
            complain(line);
    if (!_failure.empty())
        complain(_failure);

    const bool made = _isMade();
    const bool worthKeeping = made && !_isInterrupted && !_hasFailed && _failure.empty()
        && statusOf(_archive)->st_size > 0;
    if (made && !worthKeeping)
        ::unlink(_archive.c_str());
    if (_isInterrupted) {
        complain("interrupted");
        return exitInterrupted;
    }
    if (!worthKeeping) {
        complain("no archive was made");
        return exitFailed;
    }
    std::cout << _archive.native() << "\n" << std::flush;
    if (!std::cout)
        complain("cannot write to standard output");
    return _hasSkipped || !std::cout ? exitFailed : exitMade;
}
