// A request: proposed name, panel or name sheet, worker thread, progress sheet.

#include "app/job/ArchiveKind.h"
#include "app/window/AdvertTextView.h"
#include "app/window/AppController.h"
#include "app/window/DropView.h"
#include "app/window/JobAttention.h"
#include "app/window/ProgressSheet.h"
#include "app/window/RequestSettings.h"
#include "platform/base/files/FileTree.h"
#include "platform/base/seams/MainQueue.h"
#include "platform/desktop/panels/SavePanel.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/panels/Tag.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "shared/Library/Extras/QKWindow.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>

#include <algorithm>
#include <exception>

using namespace std::chrono_literals;

namespace
{

// Pauses that let people see what happens, in seconds.
constexpr std::chrono::duration<double> pauseBeforeProgress = 1s;
constexpr std::chrono::duration<double> pauseAfterCompletion = 1s;
constexpr double sheetCloseDelay = 0.2;

constexpr std::chrono::milliseconds drawingInterval = 40ms; // of the progress bar

constexpr auto compressing = QLatin1String("Compressing ..."); // in every language

const QString archiveTypeKey = QStringLiteral("ArchiveType");

} // namespace

void AppController::startProcessing(QObject* /*sender*/)
{
    if (_isTerminating)
        return;
    _isUnderWay = true;
    _interface.saveDropView->setKeepsFiles(false); // its sheet does
    _tellWhatIsLeftOut();
    const QString name
        = QString::fromStdString(RequestSettings::nameFor(_interface.saveDropView->files()));
    if (selectedDestination() != DestinationTagEmail && !_opensForEmail) {
        runSavePanelSheet(name);
        return;
    }
    if (runEmailSheet(name) < 1) {
        _endRequest();
        return; // what was dropped stays in the box
    }
    const Path archive = tmpFolder().native() + "/" + _filename.toStdString() + ".zip";
    (void)FileTree::remove(archive);
    _mailsArchive = true;
    archiveToPath(archive);
}

void AppController::runSavePanelSheet(const std::optional<QString>& proposedName)
{
    setFilename(proposedName.value_or(QString()));
    SavePanel& panel = savePanel();
    panel.setNameFieldStringValue(_filename);
    panel.setFolders(foldersToSaveIn());
    if (const auto folder = destinationDirectory())
        panel.setDirectoryURL(*folder);
    panel.beginSheetModalForWindow(_interface.mainWindow, [this](int answer, const Path& path) {
        _mailsArchive = false;
        if (answer == SavePanel::answerOK) {
            archiveToPath(path);
            return;
        }
        _interface.saveDropView->clearFiles();
        _endRequest();
    });
}

SavePanel& AppController::savePanel()
{
    if (_savePanel == nullptr) {
        _savePanel = new SavePanel(_interface.mainWindow);
        _savePanel->setObjectName(QStringLiteral("savePanel"));
        _savePanel->setAccessoryView(_interface.accessoryView);
        _savePanel->setPrompt(tr("OK"));
        _savePanel->setAllowedFileType(QStringLiteral("zip"));
        const auto showExtension = [this] {
            const auto type = UserDefaults::standardUserDefaults().integerForKey(archiveTypeKey);
            if (const auto* kind = ArchiveKind::ofType(static_cast<int>(type)))
                _savePanel->setFinalExtension(QString::fromStdString(std::string(kind->extension)));
        };
        connect(this, &AppController::archiveTypeChanged, _savePanel, showExtension);
        showExtension();
    }
    return *_savePanel;
}

int AppController::runEmailSheet(const std::optional<QString>& proposedName)
{
    setFilename(proposedName.value_or(QStringLiteral("Untitled")));
    if (auto* field = _interface.emailWindow->findChild<QLineEdit*>()) {
        field->setFocus();
        field->selectAll(); // so that typing replaces the proposal
    }
    return Sheets::runModal(_interface.emailWindow, _interface.mainWindow);
}

void AppController::dismissSheet(QObject* sender)
{
    _interface.emailWindow->done(Tag::of(sender));
}

// There is one engine and one progress sheet: until the archive is delivered the box takes no other
// drop.
void AppController::archiveToPath(const Path& path)
{
    auto request = RequestSettings::request(_interface.saveDropView->files(), path);
    try {
        _job = std::make_shared<ArchiveJob>(archiver(), std::move(request), _events());
        _worker = std::async(std::launch::async, [this] { _work(); });
        _setAcceptsFiles(false);
        _attention->begin();
    } catch (const std::exception&) {
        _job.reset();
        _fail({.kind = ArchiveProblem::Kind::noWorkingFolder, .path = tmpdirString()});
        _interface.saveDropView->clearFiles();
        _endRequest();
    }
}

ArchiveJob::Events AppController::_events()
{
    return {
        .setNumberOfFiles = [this](int count) { setNumberOfFiles(count); },
        .progressBy = [this](int lines) { progressBy(lines); },
        .progressed = [this](const JobProgress& progress) { progressed(progress); },
        .completedWithStatus = [this](int status) { archiverCompletedWithStatus(status); },
    };
}

// On the worker thread. What it does to the interface are blocks for the main thread, of which it
// waits for none.
void AppController::_work()
{
    _job->sleepFor(pauseBeforeProgress);
    _performOnMainThread([this] {
        _interface.progressWindow->restart();
        Sheets::beginOverOpenWindow(_interface.progressWindow, _interface.mainWindow);
    });
    _performOnMainThread([this, result = _job->run()] {
        _notMade = result.isMade ? Path() : result.archive.value_or(Path());
        if (result.archive)
            _deliver(*result.archive);
        if (result.problem)
            _fail(*result.problem);
        else if (result.isMade && !result.isWhole)
            _tellWhatIsMissing(result.leftOut);
        _attend(result);
        _interface.saveDropView->clearFiles();
        incrementUsageCount();
        _job.reset();
        _setAcceptsFiles(true);
        _tellNext();
        _endRequest();
    });
}

void AppController::_performOnMainThread(
    std::function<void()> block, std::chrono::nanoseconds after)
{
    MainQueue::dispatchAfter(after, [self = QPointer(this), job = _job, task = std::move(block)] {
        if (self && !(job && job->isAbandoned()))
            task();
    });
}

bool AppController::acceptsFiles() const
{
    return _interface.saveDropView->acceptDrops();
}

void AppController::_setAcceptsFiles(bool flag)
{
    _interface.saveDropView->setAcceptDrops(flag);
    Q_EMIT acceptsFilesChanged();
}

void AppController::cancel(QObject* /*sender*/)
{
    if (_job)
        _job->cancel();
}

void AppController::setNumberOfFiles(int count)
{
    // Without a maximum the bar would run to and fro.
    _performOnMainThread([this, count] { _interface.progress->setMaximum(std::max(count, 1)); });
}

// The tools of small items write a thousand lines a second: drawing each would take the processor
// from them.
void AppController::progressBy(int lines)
{
    if (_uncountedLines.fetch_add(lines) == 0)
        _performOnMainThread([this] { _countLines(); }, drawingInterval);
}

void AppController::_countLines()
{
    const int lines = _uncountedLines.exchange(0);
    if (lines == 0)
        return; // the job has ended meanwhile
    QProgressBar& bar = *_interface.progress;
    _interface.statusTF->setText(compressing);
    bar.setValue(bar.value() + std::min(lines, bar.maximum() - bar.value()));
}

void AppController::progressed(const JobProgress& progress)
{
    _performOnMainThread([this, progress] {
        _interface.statusTF->setText(compressing);
        _interface.progressWindow->advanceTo(progress);
        if (progress.fraction)
            _attention->advanceTo(*progress.fraction);
    });
}

void AppController::archiverCompletedWithStatus(int status)
{
    _performOnMainThread([this, status] {
        _countLines();
        if (status == 0)
            _interface.statusTF->setText(QCoreApplication::translate("Localizable", "Completed"));
        else if (status == 1)
            _interface.statusTF->setText(QCoreApplication::translate("Localizable", "Cancelled"));
        _interface.progress->setValue(_interface.progress->maximum());
        _interface.progressWindow->finish();
    });
    if (_job)
        _job->sleepFor(pauseAfterCompletion);
    _afterDelay(sheetCloseDelay, [this] {
        _interface.progressWindow->hide();
        _interface.advertTextView->setProductId(randomProductId());
    });
    if (_shouldAutoQuit)
        _quitLater();
}

Archiver& AppController::archiver()
{
    if (!_archiver)
        _archiver = Archiver::initWithWorkingDirectory(tmpdir());
    return *_archiver;
}

void AppController::setFilename(const QString& filename)
{
    _filename = filename;
    Q_EMIT filenameChanged();
    Q_EMIT previewTextChanged();
}

QString AppController::previewText() const
{
    return archiveType() == ArchiveTypeMacZip
        ? QCoreApplication::translate("Localizable", "TYPE_MAC")
        : QCoreApplication::translate("Localizable", "TYPE_PC");
}

// The window offers these two.
int AppController::archiveType() const
{
    const auto type = UserDefaults::standardUserDefaults().integerForKey(archiveTypeKey);
    return type == ArchiveTypeMacZip ? ArchiveTypeMacZip : ArchiveTypePlainZip;
}

void AppController::setArchiveType(int type)
{
    UserDefaults::standardUserDefaults().setInteger(type, archiveTypeKey);
}
