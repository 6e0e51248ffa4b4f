// How files come to the box besides a drop: opened with the program's icon, chosen, or pasted.

#include "app/job/StandardReport.h"
#include "app/window/AppController.h"
#include "app/window/DropView.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/desktop/panels/OpenPanel.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "shared/Library/Extras/QKWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QLocale>
#include <QMimeData>

#include <utility>

namespace
{

// Documents that are opened together arrive one by one.
constexpr double openDelay = 0.05;

// After this the window stands in its place, and a sheet finds it.
constexpr double windowDelay = 0.5;

} // namespace

void AppController::openDocuments(Documents documents)
{
    _waiting.push_back(std::move(documents));
    if (_isTerminating)
        return _forgetWaiting();
    Q_EMIT waitingChanged();
    _openNext();
}

void AppController::droppedMeanwhile(const std::vector<Path>& files, const QStringList& leftOut)
{
    if (!leftOut.isEmpty())
        couldNotOpen(leftOut);
    if (!files.empty())
        openDocuments({.files = files});
}

QStringList AppController::_waitingNames() const
{
    QStringList names;
    for (const Documents& documents : _waiting)
        for (const Path& file : documents.files)
            names.append(PathText::textOf(file.filename()));
    return names;
}

QString AppController::waitingText() const
{
    const QStringList names = _waitingNames();
    return names.isEmpty() ? QString() : tr("Next: %1").arg(QLocale().createSeparatedList(names));
}

QString AppController::hint()
{
    const auto& defaults = UserDefaults::standardUserDefaults();
    return defaults.integerForKey(QStringLiteral("UsageCount")) > 0
        ? QString()
        : tr("or press Space to choose, Ctrl+V to paste");
}

// Not into what is being asked for or made: that would be added to it, or go with it.
void AppController::_openNext()
{
    if (_waiting.empty() || _isUnderWay || _isAskedAboutWaiting)
        return;
    if (Sheets::attachedSheet(_interface.mainWindow) != nullptr) {
        Sheets::whenNoneIsUp(_interface.mainWindow, this, [this] { _openNext(); });
        return;
    }
    const Documents documents = std::move(_waiting.front());
    _waiting.pop_front();
    Q_EMIT waitingChanged();
    // What is left of a request that was given up takes them in, and is not proposed anew.
    if (_interface.saveDropView->files().empty()) {
        _isUnderWay = true;
        _opensForEmail = documents.forEmail;
        _interface.saveDropView->setKeepsFiles(true);
    }
    for (const Path& file : documents.files)
        applicationOpenFile(file);
}

// What waits is opened when the sheets of this request have had their time.
void AppController::_endRequest()
{
    _isUnderWay = false;
    _opensForEmail = false;
    if (_waiting.empty())
        return;
    _afterDelay(windowDelay, [this] {
        if (!_isUnderWay)
            _interface.saveDropView->clearFiles(); // of a request that was given up
        _openNext();
    });
}

// Above the sheet of the request that they wait for.
bool AppController::_mayForgetWaiting()
{
    const QStringList names = _waitingNames();
    if (names.isEmpty())
        return true;
    _isAskedAboutWaiting = true; // none of them is opened under the question
    const int answer = AlertPanel::runAlertPanel(
        {.title = tr("Files still waiting: %1").arg(names.size()).toStdString(),
            .message = tr("They came while another archive was being made, and will not be "
                          "archived if you quit:\n%1")
                           .arg(_listed(names))
                           .toStdString(),
            .defaultButton = tr("Cancel").toStdString(),
            .otherButton = tr("&Quit Anyway").toStdString()});
    _isAskedAboutWaiting = false;
    if (answer == AlertPanel::answerOther)
        return true;
    _afterDelay(windowDelay, [this] { _openNext(); });
    return false;
}

// Nobody is asked any more.
void AppController::_forgetWaiting()
{
    for (const Documents& documents : std::exchange(_waiting, {}))
        for (const Path& file : documents.files)
            StandardReport::complain("'" + file.native() + "' was still waiting: no archive of it");
}

bool AppController::applicationOpenFile(const Path& path)
{
    if (_interface.saveDropView->files().empty())
        _afterDelay(openDelay, [this] { startProcessing(this); });
    _interface.saveDropView->addFileWithPath(path);
    ++_dockDropCount;
    return true;
}

void AppController::couldNotOpen(const QStringList& names)
{
    _afterDelay(windowDelay, [this, names] {
        _tell({.title = tr("There are no such files"),
            .text = tr("These cannot be archived:\n%1").arg(_listed(names))});
    });
}

void AppController::_tellWhatIsLeftOut()
{
    const QStringList leftOut = _interface.saveDropView->leftOut();
    if (!leftOut.isEmpty())
        _interface.mainWindow->runMessageSheetWithTitle(tr("Not everything can be archived"),
            tr("These are not files on this computer and will be left out:\n%1")
                .arg(_listed(leftOut)));
}

void AppController::chooseFiles(QObject* /*sender*/)
{
    _choose([this](const auto& paths) { _chose(paths); });
}

void AppController::chooseFilesForEmail()
{
    _choose([this](const auto& paths) {
        if (paths.empty())
            return;
        if (!_isUnderWay)
            _interface.saveDropView->clearFiles(); // of a request that was given up
        openDocuments({.files = paths, .forEmail = true});
    });
}

// Where the last choice was made; at first where the program was started.
void AppController::_choose(std::function<void(const std::vector<Path>& paths)> then)
{
    if (!acceptsFiles())
        return;
    std::error_code gone;
    if (!std::filesystem::is_directory(_folderToChooseIn, gone))
        _folderToChooseIn = std::filesystem::current_path(gone);
    OpenPanel::beginForFiles(_interface.mainWindow, _folderToChooseIn,
        [this, then = std::move(then)](const auto& paths, const Path& folder) {
            _folderToChooseIn = folder;
            then(paths);
        });
}

void AppController::_chose(const std::vector<Path>& paths)
{
    if (paths.empty())
        return;
    if (_isUnderWay) { // a request has begun while the panel was up
        openDocuments({.files = paths});
        return;
    }
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
