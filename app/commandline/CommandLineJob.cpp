#include "app/commandline/CommandLineJob.h"

#include "app/job/DocumentPath.h"
#include "app/job/ProposedName.h"
#include "app/job/StandardReport.h"
#include "platform/base/files/ScratchFolder.h"
#include "platform/base/seams/MainQueue.h"
#include "shared/Library/Archiver/FileManagerArchiverConvenience.h"
#include "system/LastError.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

#include <poll.h>
#include <unistd.h>

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace
{

constexpr auto redrawInterval = 100ms; // quick enough to look alive
constexpr auto abandonInterval = 200ms; // a tool may need several interrupts

using StandardReport::complain;

bool complain(const fs::path& path, const std::error_code& reason)
{
    return complain("'" + path.native() + "': " + reason.message());
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
        return StandardReport::exitFailed;
    if (_line.passwordFromInput && !_readPassword())
        return StandardReport::exitFailed;
    if (!_interrupted.stop_requested()) {
        const ScratchFolder workingFolder;
        _makeArchive(workingFolder.path());
    }
    return StandardReport::tell(_result, _interrupted.stop_requested());
}

bool CommandLineJob::_resolveFiles()
{
    bool complete = true;
    for (const Path& file : _line.files) {
        std::error_code failure;
        const fs::file_status status = fs::symlink_status(file, failure);
        if (!fs::exists(status))
            complete = complain(file, failure);
        else {
            _files.push_back(documentPath(file, failure));
            if (failure)
                complete = complain(file, failure);
        }
    }
    return complete;
}

bool CommandLineJob::_chooseArchive()
{
    std::error_code missing;
    const Path folder = fs::canonical(*_line.toFolder, missing);
    if (missing)
        return complain(*_line.toFolder, missing);
    _archive = folder
        / (_line.name.value_or(proposedName(_files, false, _line.extension())) + _line.extension());
    return true;
}

// A byte at a time: what comes after the line is not ours. A signal ends the wait for it. False
// when it cannot be read, which is told: no password would be the wrong one.
bool CommandLineJob::_readPassword()
{
    _password.emplace();
    std::array<pollfd, 2> watched{pollfd{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
        pollfd{.fd = _signals.descriptor(), .events = POLLIN, .revents = 0}};
    for (char byte = 0;;) {
        if (::poll(watched.data(), watched.size(), -1) < 0)
            continue; // the signal that is to be read next
        if (watched[1].revents != 0 && _signals.take()) {
            _interrupted.request_stop();
            return true;
        }
        if (watched[0].revents == 0)
            continue;
        const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
        if (count < 0 && errno != EINTR && errno != EAGAIN)
            return complain("cannot read the password: " + lastError().message());
        if (count == 0 || (count == 1 && byte == '\n'))
            return true;
        if (count == 1)
            *_password += byte;
    }
}

ArchiveJob::Request CommandLineJob::_request() const
{
    return {.items = _files,
        .archive = _archive,
        .type = _line.type,
        .compressionLevel = _line.level,
        .excludeDSStore = _line.excludeDSStore,
        .password = _password};
}

ArchiveJob::Events CommandLineJob::_events()
{
    ArchiveJob::Events events{
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
    if (_progress.isShown())
        events.progressed = [this](const JobProgress& progress) { _progress.advanceTo(progress); };
    return events;
}

void CommandLineJob::_makeArchive(const Path& workingFolder)
{
    const auto archiver = Archiver::initWithWorkingDirectory(workingFolder);
    ArchiveJob job(*archiver, _request(), _events());

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
    MainQueue::setSubmitter({});
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
