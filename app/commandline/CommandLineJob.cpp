#include "app/commandline/CommandLineJob.h"

#include "app/job/DocumentPath.h"
#include "app/job/ProposedName.h"
#include "platform/base/files/ScratchFolder.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/base/seams/MainQueue.h"
#include "shared/Library/Archiver/FileManagerArchiverConvenience.h"
#include "system/FileStatus.h"
#include "system/LastError.h"
#include "system/PathString.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iostream>
#include <thread>
#include <utility>

#include <unistd.h>

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace
{

constexpr auto redrawInterval = 100ms; // quick enough to look alive
constexpr auto abandonInterval = 200ms; // a tool may need several interrupts

enum ExitStatus : int { exitMade = 0, exitFailed = 1, exitInterrupted = 130 };

// Always false, for the checks that end with it.
bool complain(std::string message)
{
    // Control bytes of a name could move the cursor of a terminal, or worse.
    std::ranges::replace_if(message, ToolMessages::isControl, '?');
    std::cerr << "parcelo: " << message << "\n" << std::flush;
    return false;
}

bool complain(const fs::path& path, const std::error_code& reason)
{
    return complain("'" + path.native() + "': " + reason.message());
}

// Of links, they themselves and not what they lead to.
bool areSame(const fs::path& one, const fs::path& other)
{
    FileStatus first{};
    FileStatus second{};
    return ::lstat(one.c_str(), &first) == 0 && ::lstat(other.c_str(), &second) == 0
        && isSameFile(first, second);
}

} // namespace

CommandLineJob::CommandLineJob(CommandLine line)
    : _line(std::move(line))
    , _progress(_line.quiet)
{
}

int CommandLineJob::run()
{
    if (!_resolveFiles() || !_chooseArchive())
        return exitFailed;
    {
        const ScratchFolder workingFolder;
        _makeArchive(workingFolder.path());
    }
    return _report();
}

bool CommandLineJob::_resolveFiles()
{
    bool complete = true;
    for (const Path& file : _line.files) {
        std::error_code failure;
        const fs::file_status status = fs::symlink_status(file, failure);
        if (!fs::exists(status))
            complete = complain(file, failure);
        else if (PathString::lastPathComponent(file.native()) == "/")
            complete = complain("'/' has no name to be archived under");
        else {
            _files.push_back(documentPath(file, failure));
            if (failure)
                complete = complain(file, failure);
        }
    }
    return complete && (_line.type == ArchiveTypePlainZip || _canBeStaged());
}

// The engine stages items as links, and passes over what does not lead anywhere.
bool CommandLineJob::_canBeStaged() const
{
    bool complete = true;
    for (const Path& file : _files) {
        std::error_code missing;
        const fs::file_status target = fs::status(file, missing);
        if (!fs::is_regular_file(target) && !fs::is_directory(target))
            complete = complain("'" + file.native() + "' leads to no file or folder");
    }
    return complete;
}

bool CommandLineJob::_chooseArchive()
{
    std::error_code missing;
    const Path folder = fs::canonical(*_line.toFolder, missing);
    if (missing)
        return complain(*_line.toFolder, missing);
    if (!fs::is_directory(folder))
        return complain(*_line.toFolder, std::make_error_code(std::errc::not_a_directory));
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        return complain(*_line.toFolder, lastError());
    _archive = folder
        / (_line.name.value_or(proposedName(_files, false, _line.extension())) + _line.extension());
    if (fs::is_directory(fs::symlink_status(_archive, missing)))
        return complain(_archive, std::make_error_code(std::errc::is_a_directory));
    if (std::ranges::any_of(_files, [&](const Path& file) { return areSame(file, _archive); }))
        return complain("'" + _archive.native() + "' would replace a file that is to be archived");
    return true;
}

ArchiveJob::Request CommandLineJob::_request() const
{
    ArchiveJob::Request request{.items = _files,
        .archive = _archive,
        .type = _line.type,
        .compressionLevel = _line.level,
        .excludeDSStore = _line.excludeDSStore};
    if (_line.passwordFromInput)
        std::getline(std::cin, request.password.emplace());
    return request;
}

ArchiveJob::Events CommandLineJob::_events()
{
    return {
        .setNumberOfFiles =
            [this](int count) {
                // Of staged items it is the links that were counted, while the tool tells of the
                // folder that holds them and of all that is in them.
                if (_line.type != ArchiveTypePlainZip && _progress.isShown())
                    count = FileManagerArchiverConvenience::numberOfFilesAtPaths(
                                _files, _interrupted.get_token())
                        + 1;
                _progress.setTotal(count);
            },
        .progressBy = [this](int lines) { _progress.advanceBy(lines); },
    };
}

void CommandLineJob::_makeArchive(const Path& workingFolder)
{
    const auto archiver = Archiver::initWithWorkingDirectory(workingFolder);
    ArchiveJob job(*archiver, _request(), _events());

    AlertPanel::setPresenter([this](const AlertPanel::Alert& alert) {
        if (!_interrupted.stop_requested())
            complain(alert.title + ": " + alert.message);
        return int{AlertPanel::answerDefault};
    });
    MainQueue::setSubmitter([this](std::chrono::nanoseconds delay, MainQueue::Block block) {
        _loop.submitAfter(delay, std::move(block));
    });
    _loop.watch(_signals.descriptor(), [&] {
        if (_signals.take() && _interrupted.request_stop())
            _abandonUntilEnded(job);
    });
    _drawUntilEnded();

    std::jthread worker([&] {
        _result = job.run();
        _loop.submitAfter(0ns, [this] { _isEnded = true; });
    });
    _loop.runUntil([this] { return _isEnded; });
    worker.join();
    _progress.clear();
    if (!_interrupted.stop_requested() && !_result.isMade)
        _loop.drain(); // an alert may be on its way and tells why
    MainQueue::setSubmitter({});
    AlertPanel::setPresenter({});
}

void CommandLineJob::_abandonUntilEnded(ArchiveJob& job)
{
    if (_isEnded)
        return;
    job.abandon();
    _loop.submitAfter(abandonInterval, [this, &job] { _abandonUntilEnded(job); });
}

void CommandLineJob::_drawUntilEnded()
{
    if (_isEnded)
        return;
    _progress.draw();
    _loop.submitAfter(redrawInterval, [this] { _drawUntilEnded(); });
}

int CommandLineJob::_report() const
{
    if (_interrupted.stop_requested() && !_result.isMade) {
        complain("interrupted");
        return exitInterrupted;
    }
    for (const std::string& line : _result.messages)
        complain(line);
    if (!_result.reason.empty())
        complain(_result.reason);
    if (!_result.isMade) {
        complain("no archive was made");
        return exitFailed;
    }
    std::cout << _result.archive->native() << "\n" << std::flush;
    if (!std::cout)
        complain("cannot write to standard output");
    return _result.isWhole && std::cout ? exitMade : exitFailed;
}
