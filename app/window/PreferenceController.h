// Runs the preferences as a sheet. Its controls are bound to the user defaults in the interface
// form, but for the one that hides the advert. OK saves, Cancel reverts; the application is told
// either way. Main thread only.
#pragma once

#include "platform/desktop/settings/DefaultsController.h"

#include <QDialog>
#include <QPointer>

class QAbstractButton;
class QKWindow;

class PreferenceController : public QObject
{
    Q_OBJECT

public:
    PreferenceController();
    ~PreferenceController() override;

    // Loads the window from its form, as a child of the application's; then sets its controls.
    void awakeFromNib(QKWindow* onWindow);
    void windowDidLoad();

    // Shows the sheet on the window, not on whoever sends this.
    void showWindow(QKWindow* onWindow);

    void accept(QObject* sender);
    void cancel(QObject* sender);

    // Does nothing: the check box's state is read when the sheet is accepted.
    void toggleAdvert(QObject* sender);

    void sheetDidEnd(QDialog* sheet, int returnCode);

Q_SIGNALS:
    void sheetEnded(); // the settings are as they are to be

private:
    void _readDefaults();
    void _writeDefaults();

    QPointer<QDialog> _nonAppStorePreferencesWindow; // once it is shown; the main window's child
    DefaultsController _defaultsController;
    QAbstractButton* _hideAdvertBtn = nullptr; // the window's
};
