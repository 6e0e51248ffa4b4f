#include "app/job/ArchiveJob.h"

#include "app/job/ArchiveKind.h"
#include "app/job/StagingPlace.h"
#include "platform/base/files/FileCopy.h"
#include "system/FileName.h"
#include "system/LastError.h"
#include "system/PathString.h"
#include "system/ScopeExit.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <set>
#include <utility>

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

} // namespace

ArchiveJob::ArchiveJob(Archiver& engine, Request request, Events events)
    : _engine(engine)
    , _request(std::move(request))
    , _events(std::move(events))
    , _messages(toolOf(_request.type))
    , _place(_request.archive, extensionOf(_request.type))
{
}

ArchiveJob::Result ArchiveJob::run()
{
    _result.reason = _obstacle();
    if (_result.reason.empty())
        _make();
    _result.messages = _messages.lines();
    _result.isWhole = _result.isMade && !_hasLeftOut;
    if (_engineStatus && _events.completedWithStatus)
        _events.completedWithStatus(*_engineStatus);
    return std::move(_result);
}

// What can be known before anything is begun; empty when there is nothing.
std::string ArchiveJob::_obstacle() const
{
    const ArchiveKind* kind = ArchiveKind::ofType(_request.type);
    if (kind == nullptr)
        return "there is no such type of archive";
    if (const auto missing = Archiver::missingTool(_request.type))
        return "this system has no " + std::string(kind->purpose) + " tool (" + missing->native()
            + ")";
    if (_request.type == ArchiveTypeTarGz && !Archiver::tarPath())
        return "the tar tool is missing from the program's resources";
    if (const std::string name = nameOf(_request); name.empty() || name == "." || name == "..")
        return "'" + name + "' is no name for it";
    if (_place.isTakenByFolder())
        return "'" + _request.archive.native() + "' is a folder";
    return {};
}

void ArchiveJob::_make()
try {
    const ScratchFolder privateFolder(_request.archive.parent_path());
    _makeIn(privateFolder.path());
} catch (const std::exception& failure) {
    _result.reason = failure.what();
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
    _engine.setDelegate(_delegate());
    _engine.setArchiveInAlerts(_request.archive);
    const ScopeExit lettingGo([this] { _engine.setDelegate(std::nullopt); });
    const auto made = _engine.archiveFiles({.files = items,
        .name = nameOf(_request),
        .type = _request.type,
        .excludeDSStore = _request.excludeDSStore,
        .compressionLevel = _request.compressionLevel,
        .toFolder = folder,
        .withPassword = _request.password});
    Stop untilNow = Stop::none;
    _stop.compare_exchange_strong(untilNow, Stop::tooLate);
    _result.isMade = untilNow == Stop::none && made && !_hasFailed && isWorthKeeping(*made);
    if (_result.isMade)
        _deliver(*made);
    if (made)
        _result.archive = _place.path();
    else
        _result.reason = "nothing was made";
}

void ArchiveJob::_deliver(const Path& made)
{
    if (const auto failure = _place.put(made)) {
        _result.isMade = false;
        _result.reason
            = (_place.isTaken() ? "Unable to replace existing file at '" : "Unable to write to '")
            + _request.archive.native() + "': " + failure.message();
    } else if (_place.movedAside()) {
        _messages.add("'" + _request.archive.native()
            + "' was put there by somebody else meanwhile, and is '" + _place.movedAside()->native()
            + "' now");
    } else if (_place.path() != _request.archive) {
        _messages.add("'" + _request.archive.native()
            + "' was put there by somebody else meanwhile and stays; this archive is '"
            + _place.path().native() + "'");
    }
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
    return {
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
    };
}

void ArchiveJob::_noteStatus(int status)
{
    _messages.taskCompleted(status);
    if (status == 0)
        return;
    const auto& leftOut = ArchiveKind::ofType(_request.type)->leftOutStatuses;
    (std::ranges::count(leftOut, status) > 0 ? _hasLeftOut : _hasFailed) = true;
}

void ArchiveJob::_noteLeftOut(const Path& item, std::error_code reason)
{
    _messages.add("'" + item.native() + "' is left out: " + reason.message());
    _hasLeftOut = true;
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
