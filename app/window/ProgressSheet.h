// The sheet of the progress bar: beside what is counted, the file that is being read, how much of
// how much, how fast and how long still. Escape does not close it: it asks for a cancel, and the
// sheet goes when the job has ended. A screen reader is told, by the description of the sheet,
// which has the keyboard, what becomes of the status and of every tenth.
#pragma once

#include "app/job/JobProgress.h"

#include <QDialog>

#include <memory>

namespace Ui
{
class ProgressWindow;
} // namespace Ui

class ProgressSheet : public QDialog
{
    Q_OBJECT

public:
    explicit ProgressSheet(QWidget* parent);
    ~ProgressSheet() override;

    [[nodiscard]] const Ui::ProgressWindow& form() const { return *_form; }

    // For a job that begins, of which nothing is known.
    void restart();
    void advanceTo(const JobProgress& progress);
    // There is nothing more to be cancelled.
    void finish();

    void reject() override { Q_EMIT cancelled(); }

protected:
    void showEvent(QShowEvent* event) override;

Q_SIGNALS:
    void cancelled();

private:
    void _makeRoom();
    void _announce();

    const std::unique_ptr<Ui::ProgressWindow> _form;
};
