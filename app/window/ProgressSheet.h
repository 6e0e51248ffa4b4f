// The sheet of the progress bar. Escape does not close it: it asks for a cancel, and the sheet goes
// when the job has ended.
#pragma once

#include <QApplication>
#include <QDialog>

class ProgressSheet : public QDialog
{
    Q_OBJECT

public:
    using QDialog::QDialog;

    void reject() override { Q_EMIT cancelled(); }

protected:
    // It comes up by itself: keys meant for what was there before must not press Cancel.
    void showEvent(QShowEvent* event) override
    {
        QDialog::showEvent(event);
        setFocusPolicy(Qt::ClickFocus);
        setFocus();
        if (QWidget* question = QApplication::activeModalWidget()) { // asked a moment before
            question->raise();
            question->activateWindow();
        }
    }

Q_SIGNALS:
    void cancelled();
};
