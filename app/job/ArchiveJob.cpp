#include "app/job/ArchiveJob.h"

#include "app/job/ArchiveKind.h"
#include "app/job/StagingPlace.h"
#include "platform/base/files/FileCopy.h"
#include "platform/base/process/Task.h"
#include "system/FileName.h"
#include "system/FileStatus.h"
#include "system/LastError.h"
#include "system/PathString.h"
#include "system/ScopeExit.h"

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{

bool isWorthKeeping(const fs::path& made)
{
    std::error_code missing;
    return fs::symlink_status(made, missing).type() == fs::file_type::regular
        && fs::file_size(made, missing) > 0 && !missing;
}

std::string toolOf(int type)
{
    const ArchiveKind* kind = ArchiveKind::ofType(type);
    return kind != nullptr ? std::string(kind->tool) : std::string();
}

std::string_view extensionOf(int type)
{
    const ArchiveKind* kind = ArchiveKind::ofType(type);
    return kind != nullptr ? kind->extension : "";
}

// The name without the extension of its type.
std::string nameOf(const ArchiveJob::Request& request)
{
    std::string name = request.archive.filename();
    if (const auto extension = extensionOf(request.type); name.ends_with(extension))
        name.resize(name.size() - extension.size());
    return name;
}

// Of links, they themselves and not what they lead to.
bool areSame(const fs::path& one, const fs::path& other)
{
    FileStatus first{};
    FileStatus second{};
    return ::lstat(one.c_str(), &first) == 0 && ::lstat(other.c_str(), &second) == 0
        && isSameFile(first, second);
}

bool isOfFullDisk(const std::error_code& reason)
{
    return reason == std::errc::no_space_on_device || reason.value() == EDQUOT;
}

// As the tools say it, in whatever language this process speaks.
bool isOfFullDisk(std::string_view words)
{
    return words.ends_with("No space left on device") || words.ends_with("Disk quota exceeded");
}

} // namespace

ArchiveJob::ArchiveJob(Archiver& engine, Request request, Events events)
    : _engine(engine)
    , _request(std::move(request))
    , _events(std::move(events))
    , _messages(toolOf(_request.type))
    , _place(_request.archive, extensionOf(_request.type), _request.mayReplace)
{
}

ArchiveJob::Result ArchiveJob::run()
{
    _result.problem = _obstacle();
    if (!_result.problem)
        _make();
    if (_stop == Stop::asked)
        _result.problem.reset();
    _result.messages = _messages.lines();
    _result.isWhole = _result.isMade && _result.leftOut.count() == 0;
    if (_engineStatus && _events.completedWithStatus)
        _events.completedWithStatus(_stop == Stop::asked ? 1 : *_engineStatus);
    return std::move(_result);
}

ArchiveProblem ArchiveJob::_problem(ArchiveProblem::Kind kind, Path path, std::string reason) const
{
    return {.kind = kind,
        .archive = _request.archive,
        .path = std::move(path),
        .reason = std::move(reason)};
}

// In the folder where the archive is to stand.
ArchiveProblem ArchiveJob::_problemOfWriting(const std::error_code& reason) const
{
    using enum ArchiveProblem::Kind;
    static const std::map<int, ArchiveProblem::Kind> kinds{{EROFS, readOnlyDisk},
        {EACCES, noPermission}, {EPERM, noPermission}, {ENOENT, noFolder}, {ENOTDIR, noFolder},
        {ENOSPC, fullDisk}, {EDQUOT, fullDisk}};
    const auto kind = kinds.find(reason.value());
    return _problem(kind == kinds.end() ? cannotWrite : kind->second, {}, reason.message());
}

// What can be known before anything is begun.
std::optional<ArchiveProblem> ArchiveJob::_obstacle() const
{
    using enum ArchiveProblem::Kind;
    if (ArchiveKind::ofType(_request.type) == nullptr)
        return _problem(noSuchType);
    if (const auto missing = Archiver::missingTool(_request.type))
        return _problem(noTool, *missing);
    if (_request.type == ArchiveTypeTarGz && !Archiver::tarPath())
        return _problem(noTool, "tar");
    if (const std::string name = nameOf(_request); name.empty() || name == "." || name == "..")
        return _problem(badName, name);
    if (_place.isTakenByFolder())
        return _problem(nameOfFolder);
    if (_request.items.empty())
        return _problem(nothingGiven);
    for (const Path& item : _request.items)
        if (auto obstacle = _obstacleOf(item))
            return obstacle;
    return std::nullopt;
}

std::optional<ArchiveProblem> ArchiveJob::_obstacleOf(const Path& item) const
{
    using enum ArchiveProblem::Kind;
    FileStatus status{};
    if (PathString::lastPathComponent(item.native()) == "/")
        return _problem(nameless, item);
    if (::lstat(item.c_str(), &status) != 0)
        return _problem(unreadable, item, lastError().message());
    if (_request.mayReplace && areSame(item, _request.archive))
        return _problem(replacesItem, item);
    const bool isLinkToKeep = _request.type == ArchiveTypeMacZip && S_ISLNK(status.st_mode);
    if (_request.type == ArchiveTypePlainZip || isLinkToKeep)
        return std::nullopt;
    // All else is staged as links, and what they do not lead to is passed over.
    std::error_code missing;
    const fs::file_status target = fs::status(item, missing);
    if (!fs::is_regular_file(target) && !fs::is_directory(target))
        return _problem(leadsNowhere, item);
    return std::nullopt;
}

void ArchiveJob::_make()
{
    using enum ArchiveProblem::Kind;
    std::optional<ScratchFolder> privateFolder;
    try {
        privateFolder.emplace(_request.archive.parent_path());
    } catch (const ScratchFolderFailure& failure) {
        _result.problem = _problemOfWriting(failure.code());
        return;
    }
    try {
        _makeIn(privateFolder->path());
    } catch (const LaunchFailure& failure) {
        _result.problem = _problem(cannotRunTool, {}, failure.what());
    } catch (const std::exception& failure) {
        _result.problem = _problem(other, {}, failure.what());
    }
}

// What is left in the folder goes with it.
void ArchiveJob::_makeIn(const Path& folder)
{
    const Path usualFolder = _engine.workingDirectory();
    std::optional<StagingPlace> staging;
    if (_request.type == ArchiveTypeMacZip && !_request.items.empty())
        staging.emplace(_request.items.front(), folder, usualFolder);
    _engine.setWorkingDirectory(staging ? staging->path() : usualFolder);
    const ScopeExit restoring([&] { _engine.setWorkingDirectory(usualFolder); });
    std::optional<ScratchFolder> links;
    const std::vector<Path> items = _distinctItems(links);
    try {
        if (_events.progressed)
            _reading.emplace(_request.items, _request.type, _request.excludeDSStore);
    } catch (const std::exception&) { // no thread to be had: it only shows less
        _reading.reset();
    }
    _engine.setDelegate(_delegate());
    _engine.setArchiveInAlerts(_request.archive);
    const ScopeExit lettingGo([this] {
        _engine.setDelegate(std::nullopt);
        _reading.reset();
    });
    const auto made = _engine.archiveFiles({.files = items,
        .name = nameOf(_request),
        .type = _request.type,
        .excludeDSStore = _request.excludeDSStore,
        .compressionLevel = _request.compressionLevel,
        .toFolder = folder,
        .withPassword = _request.password});
    _judge(made);
}

void ArchiveJob::_judge(const std::optional<Path>& made)
{
    Stop untilNow = Stop::none;
    _stop.compare_exchange_strong(untilNow, Stop::tooLate);
    if (made)
        _result.archive = _request.archive;
    if (untilNow != Stop::none)
        return;
    if (made && !_failedTool && !_hasNoRoomToStage && isWorthKeeping(*made))
        _deliver(*made);
    else
        _result.problem = _whyNothingIsMade();
}

ArchiveProblem ArchiveJob::_whyNothingIsMade() const
{
    using enum ArchiveProblem::Kind;
    const bool hasFilledDisk = _failedTool && isOfFullDisk(*_failedTool);
    const bool growsInWorkingFolder = _request.type == ArchiveTypePlainZip;
    const Path& workingFolder = _engine.workingDirectory();
    const bool isAtDestination = workingFolder.parent_path() == _request.archive.parent_path();
    if (!isAtDestination && (_hasNoRoomToStage || (hasFilledDisk && growsInWorkingFolder)))
        return _problem(fullTemporaryDisk, workingFolder);
    if (hasFilledDisk || _hasNoRoomToStage)
        return _problem(fullDisk);
    if (_failedTool)
        return _problem(toolFailed, {}, *_failedTool);
    // Of a move, that there is nothing to move tells of the tool.
    if (_engineFailure && _engineFailure != std::errc::no_such_file_or_directory)
        return _problemOfWriting(_engineFailure);
    if (_result.leftOut.items.empty())
        return _problem(nothingMade);
    const LeftOut::Item& first = _result.leftOut.items.front();
    return _problem(unreadable, first.name, first.reason);
}

void ArchiveJob::_deliver(const Path& made)
{
    if (const auto failure = _place.put(made)) {
        _result.archive.reset();
        _result.problem = _problemOfWriting(failure);
        _result.problem->isOfReplacing = _place.isTaken();
        return;
    }
    _result.isMade = true;
    _result.archive = _place.path();
    if (_reading) {
        _reading->finish();
        _events.progressed(_reading->progress());
    }
    if (_place.movedAside())
        _messages.add("'" + _request.archive.native()
            + "' was put there by somebody else meanwhile, and is '" + _place.movedAside()->native()
            + "' now");
    else if (_place.path() != _request.archive && _request.mayReplace)
        _messages.add("'" + _request.archive.native()
            + "' was put there by somebody else meanwhile and stays; this archive is '"
            + _place.path().native() + "'");
}

// The zip tool sees to names that come twice. All else is staged in one folder: there an item whose
// name is taken gets the next free one, by way of a link of that name.
std::vector<ArchiveJob::Path> ArchiveJob::_distinctItems(std::optional<ScratchFolder>& links)
{
    if (_request.type == ArchiveTypePlainZip)
        return _request.items;
    std::vector<Path> items;
    std::set<std::string> names;
    const auto isTaken = [&](const std::string& name) { return names.contains(name); };
    for (const Path& item : _request.items) {
        const std::string own = PathString::lastPathComponent(item.native());
        if (names.insert(own).second) {
            items.push_back(item);
            continue;
        }
        std::error_code missing;
        const std::string name = FileName::nextFree(own, fs::is_directory(item, missing), isTaken);
        names.insert(name);
        if (!links)
            links.emplace(_engine.workingDirectory());
        if (!_makeLink(links->path() / name, item))
            continue;
        items.push_back(links->path() / name);
        _messages.add("'" + item.native() + "' is kept as '" + name + "'");
    }
    return items;
}

// A symbolic link, which the tools follow; not so in a zip with extended attributes, where it would
// be archived as one: there it is a hard link, or else a copy, which the engine copies once more.
// False when there is nothing to stage, which is told.
bool ArchiveJob::_makeLink(const Path& link, const Path& toItem)
{
    if (_request.type != ArchiveTypeMacZip) {
        const auto failure = errorOf(::symlink(toItem.c_str(), link.c_str()));
        if (failure)
            _noteLeftOut(toItem, failure);
        return !failure;
    }
    if (::link(toItem.c_str(), link.c_str()) != 0)
        (void)FileCopy::copyItem(toItem, link,
            {.leavingOut = _engine.workingDirectory(),
                .linking = true,
                .onFailure
                = [this](const Path& part, std::error_code reason) { _noteLeftOut(part, reason); },
                .stop = _abandoning.get_token()});
    std::error_code missing;
    return fs::symlink_status(link, missing).type() != fs::file_type::not_found;
}

ArchiverDelegate ArchiveJob::_delegate()
{
    ArchiverDelegate delegate{
        .setNumberOfFiles =
            [this](int count) {
                _heedStop();
                if (_events.setNumberOfFiles)
                    _events.setNumberOfFiles(count);
            },
        .progressBy =
            [this](int lines) {
                if (_events.progressBy)
                    _events.progressBy(lines);
            },
        .taskCompletedWithStatusCode = [this](int status) { _noteStatus(status); },
        .archiverCompletedWithStatus = [this](int status) { _engineStatus = status; },
        .toolOutput =
            [this](std::string_view bytes) {
                _heedStop();
                _messages.addOutput(bytes);
            },
        .notStaged
        = [this](const Path& item, std::error_code reason) { _noteLeftOut(item, reason); },
        .notMoved =
            [this](std::error_code reason) {
                _engineFailure = reason;
                return _stop != Stop::asked; // then it alerts, too
            },
    };
    if (_reading)
        delegate.toolIsRunning = [this](pid_t tool) {
            _reading->look(tool);
            _events.progressed(_reading->progress());
        };
    return delegate;
}

void ArchiveJob::_noteStatus(int status)
{
    if (_reading)
        _reading->toolHasEnded();
    auto [text, warnings] = _messages.taskCompleted(status);
    if (status == 0)
        return;
    const auto& leftOut = ArchiveKind::ofType(_request.type)->leftOutStatuses;
    if (std::ranges::count(leftOut, status) > 0)
        _result.leftOut.add(std::move(warnings));
    else if (!_failedTool)
        _failedTool = text;
}

void ArchiveJob::_noteLeftOut(const Path& item, std::error_code reason)
{
    // No fault of the item's, and no reason to give up an older archive.
    _hasNoRoomToStage = _hasNoRoomToStage || isOfFullDisk(reason);
    const bool isStaged
        = reason == FileCopy::changedWhileRead() || reason == FileCopy::attributesLost();
    _messages.add("'" + item.native() + (isStaged ? "' " : "' is left out: ") + reason.message());
    _result.leftOut.add({.name = item, .reason = reason.message()});
}

// The engine forgets what it was told before it begins: then it is told once more.
void ArchiveJob::_heedStop()
{
    if (_stop == Stop::asked)
        _engine.cancel();
}

// Also when it was asked before: a tool that was about to start has missed that.
void ArchiveJob::cancel()
{
    Stop untilNow = Stop::none;
    if (_stop.compare_exchange_strong(untilNow, Stop::asked) || untilNow == Stop::asked)
        _engine.cancel();
}

void ArchiveJob::abandon()
{
    Stop untilNow = Stop::none;
    _stop.compare_exchange_strong(untilNow, Stop::asked);
    _abandoning.request_stop();
    _engine.abandon();
}

void ArchiveJob::sleepFor(std::chrono::duration<double> time) const
{
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    never.wait_for(lock, _abandoning.get_token(), time, [] { return false; });
}
