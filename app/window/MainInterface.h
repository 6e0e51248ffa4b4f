// What the interface files of the main window hold: the window with its menus, the sheets and the
// save panel's accessory view, connected with each other and with the controller.
#pragma once

#include "app/window/Manual.h"
#include "app/window/ProgressSheet.h"
#include "shared/Library/Extras/QKWindow.h"

#include <QDialog>
#include <QWidget>

class AppController;

class MainInterface
{
public:
    // The controller is borrowed, and wakes up when all is connected.
    explicit MainInterface(AppController& controller);
    MainInterface(const MainInterface&) = delete;
    MainInterface& operator=(const MainInterface&) = delete;
    ~MainInterface();

    [[nodiscard]] QKWindow& window() { return _window; }

private:
    Manual _manual;
    QKWindow _window; // before the sheets and the panel, which become its children
    QDialog* _emailWindow;
    ProgressSheet* _progressWindow;
    QWidget* _accessoryView;
};
