#include "app/window/PreferenceController.h"

#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "shared/Library/Extras/ButtonDefaultsAdditions.h"
#include "shared/Library/Extras/QKWindow.h"
#include "ui_Preference.h"

namespace
{

const QString hideAdvertKey = QStringLiteral("HideAdvert");

} // namespace

PreferenceController::PreferenceController() = default;

PreferenceController::~PreferenceController() = default;

void PreferenceController::awakeFromNib(QKWindow* onWindow)
{
    _nonAppStorePreferencesWindow = new QDialog(onWindow);
    Ui::Preference preference;
    preference.setupUi(_nonAppStorePreferencesWindow);
    _hideAdvertBtn = preference.hideAdvertBtn;
    _defaultsController.bind(_nonAppStorePreferencesWindow);
    connect(preference.hideAdvertBtn, &QCheckBox::clicked, this,
        [this] { toggleAdvert(_hideAdvertBtn); });
    connect(preference.acceptButton, &QPushButton::clicked, this, [this] { accept(sender()); });
    connect(preference.cancelButton, &QPushButton::clicked, this, [this] { cancel(sender()); });
    connect(_nonAppStorePreferencesWindow, &QDialog::finished, this,
        [this](int returnCode) { sheetDidEnd(_nonAppStorePreferencesWindow, returnCode); });
    windowDidLoad();
}

void PreferenceController::windowDidLoad()
{
    _readDefaults();
}

void PreferenceController::showWindow(QKWindow* onWindow)
{
    if (!_nonAppStorePreferencesWindow)
        awakeFromNib(onWindow);
    _readDefaults();
    Sheets::begin(_nonAppStorePreferencesWindow, onWindow);
}

void PreferenceController::accept(QObject* /*sender*/)
{
    _nonAppStorePreferencesWindow->done(QDialog::Accepted);
}

void PreferenceController::cancel(QObject* /*sender*/)
{
    _nonAppStorePreferencesWindow->done(QDialog::Rejected);
}

void PreferenceController::toggleAdvert(QObject* /*sender*/) { }

void PreferenceController::sheetDidEnd(QDialog* /*sheet*/, int returnCode)
{
    if (returnCode >= 1) {
        _writeDefaults();
        _defaultsController.save();
    } else {
        _defaultsController.revert();
    }
    Q_EMIT sheetEnded();
}

void PreferenceController::_readDefaults()
{
    ButtonDefaultsAdditions::takeStateFromKey(*_hideAdvertBtn, hideAdvertKey);
}

void PreferenceController::_writeDefaults()
{
    UserDefaults::standardUserDefaults().setBool(_hideAdvertBtn->isChecked(), hideAdvertKey);
}
