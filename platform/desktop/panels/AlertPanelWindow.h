// An alert panel: a title, a message as plain text, and up to three buttons with the tags 1, 0 and
// -1. Pressing a button ends the panel with its tag. The buttons are the panel's own children.
#pragma once

#include "platform/base/seams/AlertPanel.h"

#include <QDialog>

class AlertPanelWindow : public QDialog
{
    Q_OBJECT

public:
    // A button without a title is left out.
    explicit AlertPanelWindow(const AlertPanel::Alert& alert, QWidget* parent = nullptr);

    // Shows the alerts of the alert seam, each in the middle of the screen, until it is dismissed.
    static void presentAlerts();

private:
    void _addButton(class QHBoxLayout& row, const std::string& title, int tag);
};
