// What becomes of an archive: shown in the file manager or mailed; and what there is to say of it.

#include "app/window/AppController.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/desktop/panels/PopUpButton.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/services/AppleScript.h"
#include "platform/desktop/services/MailComposer.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/services/Workspace.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "shared/Library/Extras/QKWindow.h"

#include <QApplication>
#include <QDialog>

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

} // namespace

// Whatever became of the job, also when it was cancelled; that is intended.
void AppController::_deliver(const Path& archive)
{
    if (_interface.destinationPop->selectedTag() == DestinationTagEmail)
        composeEmailWithAttachment(archive);
    else if (UserDefaults::standardUserDefaults().boolForKey(QStringLiteral("RevealWhenComplete")))
        Workspace::sharedWorkspace().selectFile(archive);
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

// No tool could be started, or something of ours gave up.
void AppController::_fail(const std::string& reason)
{
    _interface.progressWindow->hide();
    const QString message
        = tr("The archive could not be made: %1.").arg(QString::fromStdString(reason));
    _afterDelay(nextSheetDelay, [this, message] { _tell(tr("Error"), message); });
}

void AppController::_tell(const QString& title, const QString& message)
{
    _untold.emplace_back(title, message);
    _tellNext();
}

// Once no sheet is up or about to be.
void AppController::_tellNext()
{
    if (_untold.empty() || !acceptsFiles())
        return;
    if (Sheets::attachedSheet(_interface.mainWindow) != nullptr) {
        Sheets::whenNoneIsUp(_interface.mainWindow, this, [this] { _tellNext(); });
        return;
    }
    const auto [title, message] = _untold.front();
    _untold.pop_front();
    _interface.mainWindow->runMessageSheetWithTitle(title, message);
    _tellNext();
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
                   "you quit:\n%1")
                    .arg(PathText::textOf(archive)));
        });
    connect(&MailComposer::sharedComposer(), &MailComposer::attached, this,
        [this](const Path& archive, bool isCertain) {
            if (!isCertain)
                _tell(tr("Please check the attachment"),
                    tr("Your mail program was asked to attach the archive, but does not tell "
                       "whether it did. If it is missing, you find it here until you quit:\n%1")
                        .arg(PathText::textOf(archive)));
        });
    connect(&Workspace::sharedWorkspace(), &Workspace::couldNotReveal, this,
        [this](const Path& archive) {
            std::error_code missing;
            if (archive != _notMade && std::filesystem::exists(archive, missing))
                _tell(tr("The archive is made"),
                    tr("No file manager could be asked to show it:\n%1")
                        .arg(PathText::textOf(archive)));
        });
}

// An alert is to be read, a file manager that starts has to be asked again, and a mail program that
// has hardly started would lose its attachment.
void AppController::_quitWhenNothingIsTold()
{
    if (_hasMailed)
        return;
    if (!_untold.empty() || QApplication::activeModalWidget()
        || Workspace::sharedWorkspace().isRevealing())
        _quitLater();
    else
        terminate(this);
}

void AppController::_quitLater()
{
    _afterDelay(autoQuitDelay, [this] { _quitWhenNothingIsTold(); });
}
