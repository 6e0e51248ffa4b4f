#pragma once

#include <QDialog>

// The sheet of the progress bar. Escape does not close it: it asks for a cancel, and the sheet goes
// when the job has ended.
class ProgressSheet : public QDialog
{
    Q_OBJECT

public:
    using QDialog::QDialog;

    void reject() override { Q_EMIT cancelled(); }

Q_SIGNALS:
    void cancelled();
};
