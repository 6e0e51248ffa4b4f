#include "app/window/HereJob.h"

#include "app/job/DocumentPath.h"
#include "app/job/StandardReport.h"
#include "app/window/RequestSettings.h"
#include "platform/base/files/ScratchFolder.h"
#include "platform/desktop/services/UriList.h"
#include "platform/desktop/services/Workspace.h"
#include "system/PathString.h"

#include <QSysInfo>

#include <algorithm>
#include <exception>
#include <utility>

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace
{

constexpr auto progressInterval = 1s; // of a notification, which is drawn anew each time
constexpr auto abandonInterval = 200ms; // a tool may need several interrupts
constexpr auto finishInterval = 200ms;

// That long a notification that nobody closes leads to its archive.
constexpr auto lifeOfNotice = 10min;

bool isThere(const fs::path& file)
{
    std::error_code missing;
    return fs::exists(fs::symlink_status(file, missing));
}

// The panel takes a name with the extension for one without.
std::string withoutZip(std::string name)
{
    constexpr std::string_view extension = ".zip";
    const std::string end = name.size() > extension.size()
        ? name.substr(name.size() - extension.size())
        : std::string();
    if (QString::fromStdString(end).compare(QLatin1String(extension.data()), Qt::CaseInsensitive)
        == 0)
        name.resize(name.size() - extension.size());
    return name;
}

} // namespace

HereJob::HereJob(const std::vector<Path>& files, Thresholds thresholds)
{
    for (const Path& file : files)
        _addFile(file);
    _untilHeldOff.setSingleShot(true);
    _untilHeldOff.setInterval(thresholds.untilHeldOff);
    connect(&_untilHeldOff, &QTimer::timeout, this,
        [this] { _inhibitor.hold(JobNotice::tr("An archive is being made")); });
    _untilShown.setInterval(thresholds.untilShown);
    connect(&_untilShown, &QTimer::timeout, this, &HereJob::_showProgress);
    connect(&_notice, &JobNotice::cancelled, this, &HereJob::stop);
    connect(&_notice, &JobNotice::gone, this, [this] {
        _showsNotice = false; // who has sent it away does not want it back
        if (_hasEnded)
            _finish();
    });
}

HereJob::~HereJob() = default;

void HereJob::_addFile(const Path& file)
{
    Path path = file;
    if (isAddress(file)) {
        const auto found
            = UriList::filePath(file.native(), QSysInfo::machineHostName().toStdString());
        if (!found)
            return _leaveOut(file, "not a file on this computer");
        path = *found;
    }
    std::error_code failure;
    if (!isThere(path))
        failure = std::make_error_code(std::errc::no_such_file_or_directory);
    else
        path = documentPath(path, failure);
    if (failure)
        _leaveOut(file, failure.message());
    else
        _items.push_back(path);
}

void HereJob::_leaveOut(const Path& file, const std::string& reason)
{
    StandardReport::complain("'" + file.native() + "': " + reason);
    _leftOut.add({.name = file.native(), .reason = reason});
}

void HereJob::start()
{
    ArchiveProblem problem;
    try {
        if (!_items.empty())
            return _begin();
        const LeftOut::Item& first = _leftOut.items.front();
        problem = {
            .kind = ArchiveProblem::Kind::unreadable, .path = first.name, .reason = first.reason};
        _leftOut.items.erase(_leftOut.items.begin());
    } catch (const std::exception& failure) {
        problem = {.kind = ArchiveProblem::Kind::other, .reason = failure.what()};
    }
    QTimer::singleShot(0, this, [this, problem] { _end({.problem = problem}); });
}

void HereJob::_begin()
{
    _workingFolder = std::make_unique<ScratchFolder>();
    _engine = Archiver::initWithWorkingDirectory(_workingFolder->path());
    ArchiveJob::Request request = _request();
    _archive = request.archive;
    _job = std::make_unique<ArchiveJob>(*_engine, std::move(request),
        ArchiveJob::Events{.progressed = [this](const JobProgress& progress) {
            const std::scoped_lock lock(_progressMutex);
            _progress = progress;
        }});
    _worker = std::async(std::launch::async, [this] {
        ArchiveJob::Result result = _job->run();
        QMetaObject::invokeMethod(
            this, [this, result = std::move(result)]() mutable { _end(std::move(result)); },
            Qt::QueuedConnection);
    });
    _untilHeldOff.start();
    _untilShown.start();
}

// By e-mail nothing can be sent without a question: then it stands beside the source, too.
ArchiveJob::Request HereJob::_request() const
{
    const Path folder = RequestSettings::rememberedFolder().value_or(
        PathString::stringByDeletingLastPathComponent(_items.front().native()));
    const std::string name = withoutZip(RequestSettings::nameFor(_items));
    ArchiveJob::Request request = RequestSettings::request(_items, folder / (name + ".zip"));
    request.mayReplace = false;
    return request;
}

void HereJob::stop()
{
    if (_hasEnded)
        return _finish();
    if (!std::exchange(_isStopped, true))
        _abandonUntilEnded();
}

void HereJob::_abandonUntilEnded()
{
    if (_hasEnded)
        return;
    if (_job)
        _job->abandon();
    QTimer::singleShot(abandonInterval, this, &HereJob::_abandonUntilEnded);
}

void HereJob::_showProgress()
{
    const std::scoped_lock lock(_progressMutex);
    _launcherEntry.showProgress(_progress.fraction.value_or(0));
    if (_showsNotice)
        _notice.showProgress(_archive, _progress);
    _untilShown.setInterval(progressInterval);
}

void HereJob::_end(ArchiveJob::Result result)
{
    _hasEnded = true;
    _untilHeldOff.stop();
    _untilShown.stop();
    _inhibitor.release();
    _launcherEntry.hideProgress();
    _letGo();
    const int status = StandardReport::tell(result, _isStopped);
    const bool isComplete = _leftOut.count() == 0;
    result.isWhole = result.isWhole && isComplete;
    result.leftOut.add(std::move(_leftOut));
    if (!result.isMade && !result.problem)
        _notice.close(); // nobody has to be told of a stop
    else
        _notice.showResult(result, {.toArchive = true});
    Q_EMIT ended(isComplete ? status : std::max<int>(status, StandardReport::exitFailed));
    if (_notice.isShown())
        QTimer::singleShot(lifeOfNotice, this, &HereJob::_finish);
    else
        _finish();
}

// Nothing of the disk is held as long as the notification stands.
void HereJob::_letGo()
{
    if (_worker.valid())
        _worker.wait();
    _job.reset();
    _engine.reset();
    _workingFolder.reset();
}

// What the notification was asked for last may still be under way.
void HereJob::_finish()
{
    if (Workspace::sharedWorkspace().isRevealing())
        QTimer::singleShot(finishInterval, this, &HereJob::_finish);
    else
        Q_EMIT finished();
}
