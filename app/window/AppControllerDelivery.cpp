// What becomes of an archive: shown in the file manager or mailed; and what there is to say of it.

#include "app/window/AppController.h"
#include "app/window/JobAttention.h"
#include "app/window/ProgressSheet.h"
#include "app/window/ResultText.h"
#include "platform/base/files/FileMove.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/services/AppleScript.h"
#include "platform/desktop/services/MailComposer.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/services/Workspace.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "shared/Library/Extras/QKWindow.h"
#include "system/FileName.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDir>
#include <QStandardPaths>

#include <algorithm>

namespace
{

constexpr double autoQuitDelay = 1.0;

// Window managers that are busy give the keys to a sheet that has just gone.
constexpr double nextSheetDelay = 0.3;

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

// The user's downloads, where there is such a folder.
std::filesystem::path folderToKeepIn()
{
    const auto downloads
        = PathText::pathOf(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    std::error_code missing;
    return std::filesystem::is_directory(downloads, missing) ? downloads
                                                             : PathText::pathOf(QDir::homePath());
}

} // namespace

// Whatever became of the job, also when it was cancelled; that is intended.
void AppController::_deliver(const Path& archive)
{
    if (_mailsArchive)
        composeEmailWithAttachment(archive);
    else if (UserDefaults::standardUserDefaults().boolForKey(QStringLiteral("RevealWhenComplete")))
        Workspace::sharedWorkspace().selectFile(archive);
}

void AppController::composeEmailWithAttachment(const Path& path)
{
    _hasMailed = true;
    AppleScript script = AppleScript::initWithSource(mailScript(path.native()));
    if (!script.executeAndReturnError())
        _tellToAttach(path); // a quote in the path ends the text in the script

    const QString key = QStringLiteral("EmailCount");
    auto& defaults = UserDefaults::standardUserDefaults();
    const auto count = static_cast<std::int32_t>(defaults.integerForKey(key));
    defaults.setInteger(static_cast<std::int32_t>(static_cast<std::uint32_t>(count) + 1), key);
    if (count == 1) // this was the second message ever
        sellSendora();
}

void AppController::_tellToAttach(const Path& archive)
{
    std::error_code missing;
    if (!std::filesystem::exists(archive, missing))
        return; // what was cancelled has nothing to attach
    Workspace::sharedWorkspace().selectFile(archive);
    _tell({.title = tr("The message could not be made"),
        .text = tr("No mail program took the archive. You can attach it yourself; it stays "
                   "until you quit:\n%1")
                    .arg(PathText::textOf(archive))});
}

// What was made for messages lies in the scratch folder, which goes with the program.
bool AppController::_mayLeaveMessages()
{
    std::error_code missing;
    if (!_hasMailed || _isTerminating || std::filesystem::is_empty(tmpFolder(), missing) || missing)
        return true;
    if (QApplication::activeModalWidget() != nullptr)
        return false; // one question at a time
    const Path folder = folderToKeepIn();
    _interface.mainWindow->setWindowState(
        _interface.mainWindow->windowState() & ~Qt::WindowMinimized);
    const int answer = _interface.mainWindow->runPromptSheetWithTitle(
        tr("The message may not have been sent yet"),
        tr("Its archive is deleted when you quit. To keep it, have it moved to this folder, from "
           "which you can attach it again:\n%1")
            .arg(PathText::textOf(folder)),
        tr("&Keep and Quit"), tr("Cancel"), tr("&Quit Anyway"));
    return answer == PromptResultOther
        || (answer == PromptResultDefault && _keepMailedArchives(folder));
}

// Nothing is replaced there.
bool AppController::_keepMailedArchives(const Path& inFolder)
{
    std::error_code failure;
    const std::filesystem::directory_iterator archives(tmpFolder(), failure);
    if (failure) {
        _fail({.kind = ArchiveProblem::Kind::other, .reason = failure.message()});
        return false;
    }
    for (const auto& archive : archives) {
        if (!archive.is_regular_file(failure))
            continue; // the folder of a job
        const auto take = [&](const std::string& name) {
            failure = FileMove::moveItem(archive, inFolder / name);
            return failure == std::errc::file_exists;
        };
        const std::string name = archive.path().filename();
        if (take(name))
            (void)FileName::nextFree(name, false, take);
        if (failure) {
            _fail({.kind = ArchiveProblem::Kind::cannotWrite,
                .archive = inFolder / name,
                .reason = failure.message()});
            return false;
        }
    }
    return true;
}

void AppController::_fail(const ArchiveProblem& problem)
{
    _interface.progressWindow->hide();
    const QString text = ResultText::sentencesOf(problem, tr("The archive could not be made"));
    _afterDelay(nextSheetDelay, [this, text] { _tell({.title = tr("Error"), .text = text}); });
}

// Of an archive that is made all the same.
void AppController::_tellWhatIsMissing(const LeftOut& leftOut)
{
    const QStringList lines = ResultText::linesOf(leftOut);
    const QString more = leftOut.more == 0 ? QString() : tr("… and %1 more").arg(leftOut.more);
    _afterDelay(nextSheetDelay, [this, lines, more, count = leftOut.count()] {
        _tell({.title = tr("Not everything is in the archive"),
            .text = tr("It is made, but these items are missing or not as they were:\n%1")
                        .arg(_listed(lines, count)),
            .toCopy = (lines + QStringList{more}).join(QLatin1Char('\n'))});
    });
}

// What fits on a sheet, and how many there are besides.
QString AppController::_listed(const QStringList& lines, std::size_t count)
{
    constexpr qsizetype most = 10;
    return ResultText::listed(lines, most, count);
}

// Whoever uses another program is told by the desktop. What is mailed shows itself.
void AppController::_attend(const ArchiveJob::Result& result)
{
    const bool stays = !_shouldAutoQuit;
    _attention->end(result, {.toWindow = stays, .toArchive = stays && !_mailsArchive});
}

void AppController::_tell(const Message& message)
{
    _untold.push_back(message);
    _tellNext();
}

// Once no sheet is up or about to be.
void AppController::_tellNext()
{
    if (_untold.empty() || !acceptsFiles() || _isTerminating)
        return;
    if (Sheets::attachedSheet(_interface.mainWindow) != nullptr) {
        Sheets::whenNoneIsUp(_interface.mainWindow, this, [this] { _tellNext(); });
        return;
    }
    const Message message = _untold.front();
    _untold.pop_front();
    if (message.toCopy.isEmpty())
        _interface.mainWindow->runMessageSheetWithTitle(message.title, message.text);
    else if (_interface.mainWindow->runPromptSheetWithTitle(message.title, message.text,
                 QCoreApplication::translate("Localizable", "Okay"), {}, tr("&Copy List"))
        == PromptResultOther)
        QApplication::clipboard()->setText(message.toCopy);
    _tellNext();
}

void AppController::_hearDesktop()
{
    connect(&MailComposer::sharedComposer(), &MailComposer::couldNotAttach, this,
        [this](const Path& archive) { _tellToAttach(archive); });
    connect(&MailComposer::sharedComposer(), &MailComposer::attached, this,
        [this](const Path& archive, bool isCertain) {
            if (!isCertain)
                _tell({.title = tr("Please check the attachment"),
                    .text
                    = tr("Your mail program was asked to attach the archive, but does not tell "
                         "whether it did. If it is missing, you find it here until you quit:\n%1")
                          .arg(PathText::textOf(archive))});
        });
    connect(&Workspace::sharedWorkspace(), &Workspace::couldNotReveal, this,
        [this](const Path& archive) {
            std::error_code missing;
            if (archive != _notMade && std::filesystem::exists(archive, missing))
                _tell({.title = tr("The archive is made"),
                    .text = tr("No file manager could be asked to show it:\n%1")
                                .arg(PathText::textOf(archive))});
        });
}

// An alert is to be read, a file manager that starts has to be asked again, and a mail program that
// has hardly started would lose its attachment.
void AppController::_quitWhenNothingIsTold()
{
    if (_hasMailed)
        return;
    if (_isUnderWay || !_waiting.empty() || !_untold.empty() || QApplication::activeModalWidget()
        || Workspace::sharedWorkspace().isRevealing())
        _quitLater();
    else
        terminate(this);
}

void AppController::_quitLater()
{
    _afterDelay(autoQuitDelay, [this] { _quitWhenNothingIsTold(); });
}
