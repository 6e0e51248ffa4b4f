// A request: proposed name, panel or name sheet, worker thread, progress sheet, delivery.

#include "app/job/ProposedName.h"
#include "app/window/AdvertTextView.h"
#include "app/window/AppController.h"
#include "app/window/DropView.h"
#include "platform/base/files/FileTree.h"
#include "platform/base/process/Task.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/desktop/panels/OpenPanel.h"
#include "platform/desktop/panels/SavePanel.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/panels/Tag.h"
#include "platform/desktop/services/AppleScript.h"
#include "platform/desktop/services/MailComposer.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/services/Workspace.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "shared/Library/Extras/QKWindow.h"
#include "system/PathString.h"

#include <QApplication>
#include <QClipboard>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
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
constexpr double autoQuitDelay = 1.0;
constexpr double tellDelay = 0.5;

// Documents that are opened together arrive one by one.
constexpr double openDelay = 0.05;

const QString archiveTypeKey = QStringLiteral("ArchiveType");

// The mail application is told what to do in its own words. The path stands in them as it is.
std::string mailScript(const std::string& path)
{
    return "tell application \"Mail\"\n"
           "set _m to make outgoing message\n"
           "tell _m\n"
           "set visible to true\n"
           "tell content\n"
           "set _f to \""
        + path
        + "\"\n"
          "make new attachment with properties {file name:_f} at after the last character\n"
          "end tell\n"
          "end tell\n"
          "activate\n"
          "end tell\n";
}

// A list that fits on a sheet.
QString listed(const QStringList& names)
{
    constexpr int longest = 8;
    if (names.size() <= longest)
        return names.join(QLatin1Char('\n'));
    return names.mid(0, longest - 1).join(QLatin1Char('\n')) + QStringLiteral("\n…");
}

} // namespace

bool AppController::applicationOpenFile(const Path& path)
{
    if (_interface.saveDropView->files().empty())
        _afterDelay(openDelay, [this] { startProcessing(this); });
    _interface.saveDropView->addFileWithPath(path);
    ++_dockDropCount;
    return true;
}

// Once the window stands in its place.
void AppController::couldNotOpen(const std::vector<Path>& missing)
{
    QStringList names;
    for (const Path& path : missing)
        names.append(PathText::textOf(path));
    _afterDelay(tellDelay, [this, names] {
        _tell(
            tr("There are no such files"), tr("These cannot be archived:\n%1").arg(listed(names)));
    });
}

void AppController::_tellWhatIsLeftOut()
{
    const QStringList leftOut = _interface.saveDropView->leftOut();
    if (!leftOut.isEmpty())
        _interface.mainWindow->runMessageSheetWithTitle(tr("Not everything can be archived"),
            tr("These are no files of this computer, and will be left out:\n%1")
                .arg(listed(leftOut)));
}

void AppController::startProcessing(QObject* /*sender*/)
{
    _tellWhatIsLeftOut();
    const bool keepsExtension = UserDefaults::standardUserDefaults().boolForKey(
        QStringLiteral("KeepExtensionForDefaultName"));
    const QString name = QString::fromStdString(
        proposedName(_interface.saveDropView->files(), keepsExtension, ".zip"));
    if (selectedDestination() != DestinationTagEmail) {
        runSavePanelSheet(name);
        return;
    }
    if (runEmailSheet(name) < 1)
        return; // what was dropped stays in the box
    const Path archive = tmpFolder().native() + "/" + _filename.toStdString() + ".zip";
    (void)FileTree::remove(archive);
    _startArchiving(archive);
}

void AppController::runSavePanelSheet(const std::optional<QString>& proposedName)
{
    setFilename(proposedName.value_or(QString()));
    SavePanel& panel = savePanel();
    panel.setNameFieldStringValue(_filename);
    if (const auto folder = destinationDirectory())
        panel.setDirectoryURL(*folder);
    panel.beginSheetModalForWindow(_interface.mainWindow, [this](int answer, const Path& path) {
        if (answer == SavePanel::answerOK)
            _startArchiving(path);
        else
            _interface.saveDropView->clearFiles();
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

// From here until the box is cleared it takes no other drop: that would replace the files of a
// request that has not read them yet.
void AppController::_startArchiving(const Path& path)
{
    try {
        archiver(); // made here, where its folder is made too
        tmpFolder();
    } catch (const std::exception&) {
        _fail(tr("there is no working folder at %1")
                  .arg(PathText::textOf(tmpdirString()))
                  .toStdString());
        _interface.saveDropView->clearFiles();
        return;
    }
    _setAcceptsFiles(false);
    _work.detachNewThread([this, path] { archiveToPath(path); });
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

void AppController::archiveToPath(const Path& path)
{
    _work.sleepFor(pauseBeforeProgress);
    _work.performOnMainThread([this] {
        _isCancelled = false;
        _interface.statusTF->clear();
        _interface.progress->setValue(0);
        Sheets::begin(_interface.progressWindow, _interface.mainWindow);
    });
    try {
        if (const auto archive = _runArchiver(path))
            _deliver(*archive);
        else // nothing was begun, so nothing tells that it has ended
            _work.performOnMainThread([this, name = path.stem()] {
                _fail(tr("'%1' is no name for it").arg(PathText::textOf(name)).toStdString());
            });
    } catch (const std::exception& failure) {
        _work.performOnMainThread([this, reason = std::string(failure.what())] { _fail(reason); });
    }
    _work.performOnMainThread([this] {
        _interface.saveDropView->clearFiles();
        _setAcceptsFiles(true);
        incrementUsageCount();
    });
}

std::optional<AppController::Path> AppController::_runArchiver(const Path& path)
{
    const auto files = std::make_shared<DropView::Files>();
    _work.performOnMainThreadAndWait([this, files] { *files = _interface.saveDropView->files(); });
    const std::lock_guard turn(_engineMutex);
    if (_work.isEnding())
        return std::nullopt;
    const auto& defaults = UserDefaults::standardUserDefaults();
    const auto type = static_cast<int>(defaults.integerForKey(archiveTypeKey));
    if (const auto missing = Archiver::missingTool(type))
        throw LaunchFailure("there is no " + missing->native());
    return archiver().archiveFiles({.files = *files,
        .name = PathString::stringByDeletingPathExtension(path.filename().native()),
        .type = type,
        .excludeDSStore = true,
        .compressionLevel
        = static_cast<int>(defaults.integerForKey(QStringLiteral("CompressionLevel"))),
        .toFolder = path.parent_path(),
        .withPassword = std::nullopt});
}

// Also what is left of a job that was cancelled; that is intended.
void AppController::_deliver(const Path& archive)
{
    _work.performOnMainThreadAndWait([this, archive] {
        if (_interface.destinationPop->selectedTag() == DestinationTagEmail)
            composeEmailWithAttachment(archive);
        else if (UserDefaults::standardUserDefaults().boolForKey(
                     QStringLiteral("RevealWhenComplete")))
            Workspace::sharedWorkspace().selectFile(archive);
    });
}

// No tool could be started, or something of ours gave up.
void AppController::_fail(const std::string& reason)
{
    _interface.progressWindow->hide();
    AlertPanel::runAlertPanel({.title = tr("Error").toStdString(),
        .message = tr("The archive could not be made: %1.")
                       .arg(QString::fromStdString(reason))
                       .toStdString(),
        .defaultButton = tr("OK").toStdString(),
        .alternateButton = "",
        .otherButton = ""});
}

void AppController::composeEmailWithAttachment(const Path& path)
{
    _hasMailed = true;
    AppleScript script = AppleScript::initWithSource(mailScript(path.native()));
    script.executeAndReturnError();

    const QString key = QStringLiteral("EmailCount");
    auto& defaults = UserDefaults::standardUserDefaults();
    const auto count = static_cast<std::int32_t>(defaults.integerForKey(key));
    defaults.setInteger(count + 1, key);
    if (count == 1) // this was the second message ever
        sellSendora();
}

// What the desktop has to say of it comes later, and waits until no sheet is up or about to be.
void AppController::_tell(const QString& title, const QString& message)
{
    if (Sheets::attachedSheet(_interface.mainWindow) != nullptr || !acceptsFiles()) {
        _afterDelay(tellDelay, [this, title, message] { _tell(title, message); });
        return;
    }
    _interface.mainWindow->runMessageSheetWithTitle(title, message);
}

void AppController::_hearDesktop()
{
    connect(&MailComposer::sharedComposer(), &MailComposer::couldNotAttach, this,
        [this](const Path& archive) {
            std::error_code missing;
            if (!std::filesystem::exists(archive, missing))
                return; // what was cancelled has nothing to attach
            Workspace::sharedWorkspace().selectFile(archive);
            _tell(tr("The message could not be made"),
                tr("No mail program took the archive. You can attach it yourself; it stays until "
                   "you "
                   "quit:\n%1")
                    .arg(PathText::textOf(archive)));
        });
    connect(&MailComposer::sharedComposer(), &MailComposer::attached, this,
        [this](const Path& archive, bool isCertain) {
            if (!isCertain)
                _tell(tr("Please check the attachment"),
                    tr("Your mail program was asked to attach the archive, but does not tell "
                       "whether "
                       "it did. If it is missing, you find it here until you quit:\n%1")
                        .arg(PathText::textOf(archive)));
        });
    connect(&Workspace::sharedWorkspace(), &Workspace::couldNotReveal, this,
        [this](const Path& archive) {
            std::error_code missing;
            if (std::filesystem::exists(archive, missing))
                _tell(tr("The archive is made"),
                    tr("No file manager could be asked to show it:\n%1")
                        .arg(PathText::textOf(archive)));
        });
}

// The engine forgets what comes before it begins: then it is told once more.
void AppController::cancel(QObject* /*sender*/)
{
    _isCancelled = true;
    archiver().cancel();
}

void AppController::setNumberOfFiles(int count)
{
    if (_isCancelled)
        archiver().cancel();
    // Without a maximum the bar would run to and fro.
    _work.performOnMainThread(
        [this, count] { _interface.progress->setMaximum(std::max(count, 1)); });
}

void AppController::progressBy(int lines)
{
    _work.performOnMainThread([this, lines] {
        QProgressBar& bar = *_interface.progress;
        _interface.statusTF->setText(QStringLiteral("Compressing ...")); // in every language
        bar.setValue(std::min(bar.value() + lines, bar.maximum()));
    });
}

void AppController::archiverCompletedWithStatus(int status)
{
    _work.performOnMainThread([this, status] {
        if (status == 0)
            _interface.statusTF->setText(QCoreApplication::translate("Localizable", "Completed"));
        else if (status == 1)
            _interface.statusTF->setText(QCoreApplication::translate("Localizable", "Cancelled"));
        _interface.progress->setValue(_interface.progress->maximum());
    });
    _work.sleepFor(pauseAfterCompletion);
    _afterDelay(sheetCloseDelay, [this] {
        _interface.progressWindow->hide();
        _interface.advertTextView->setProductId(randomProductId());
    });
    if (_shouldAutoQuit)
        _afterDelay(autoQuitDelay, [this] { _quitWhenNothingIsTold(); });
}

// An alert is to be read, a file manager that starts has to be asked again, and a mail program that
// has hardly started would lose its attachment.
void AppController::_quitWhenNothingIsTold()
{
    if (_hasMailed)
        return;
    if (QApplication::activeModalWidget() || Workspace::sharedWorkspace().isRevealing())
        _afterDelay(autoQuitDelay, [this] { _quitWhenNothingIsTold(); });
    else
        terminate(this);
}

Archiver& AppController::archiver()
{
    if (!_archiver) {
        _archiver = Archiver::initWithWorkingDirectory(tmpdir());
        _archiver->setDelegate(ArchiverDelegate{
            .setNumberOfFiles = [this](int count) { setNumberOfFiles(count); },
            .progressBy = [this](int lines) { progressBy(lines); },
            .archiverCompletedWithStatus
            = [this](int status) { archiverCompletedWithStatus(status); },
        });
    }
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
    Q_EMIT archiveTypeChanged();
    Q_EMIT previewTextChanged();
}

void AppController::chooseFiles(QObject* /*sender*/)
{
    if (acceptsFiles())
        OpenPanel::beginForFiles(
            _interface.mainWindow, [this](const auto& paths) { _chose(paths); });
}

void AppController::chooseFolder(QObject* /*sender*/)
{
    if (acceptsFiles())
        OpenPanel::beginForFolder(
            _interface.mainWindow, {}, [this](const auto& paths) { _chose(paths); });
}

void AppController::_chose(const std::vector<Path>& paths)
{
    if (paths.empty())
        return;
    _interface.saveDropView->setFiles(paths);
    _interface.saveDropView->concludeDragOperation();
}

void AppController::paste(QObject* /*sender*/)
{
    const QMimeData* pasteboard = QApplication::clipboard()->mimeData();
    DropView& box = *_interface.saveDropView;
    if (acceptsFiles() && pasteboard != nullptr && DropView::offersFiles(*pasteboard)
        && box.performDragOperation(*pasteboard))
        box.concludeDragOperation();
}
