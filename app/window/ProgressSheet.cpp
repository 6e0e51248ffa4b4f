#include "app/window/ProgressSheet.h"

#include "app/window/ProgressText.h"
#include "platform/desktop/services/PathText.h"
#include "ui_ProgressWindow.h"

#include <QApplication>
#include <QLocale>

#include <algorithm>

using namespace std::chrono_literals;

ProgressSheet::ProgressSheet(QWidget* parent)
    : QDialog(parent)
    , _form(std::make_unique<Ui::ProgressWindow>())
{
    _form->setupUi(this);
    connect(_form->progress, &QProgressBar::valueChanged, this, &ProgressSheet::_announce,
        Qt::QueuedConnection); // when the status is as new as the value
}

ProgressSheet::~ProgressSheet() = default;

void ProgressSheet::restart()
{
    for (QLabel* label : {_form->statusTF, static_cast<QLabel*>(_form->nameTF),
             static_cast<QLabel*>(_form->sizeTF), static_cast<QLabel*>(_form->timeLeftTF)})
        label->clear();
    _form->progress->restart();
    _form->cancelButton->setEnabled(true);
}

void ProgressSheet::advanceTo(const JobProgress& progress)
{
    if (progress.fraction)
        _form->progress->setFraction(*progress.fraction);
    _form->nameTF->setText(PathText::textOf(progress.name));
    _form->sizeTF->setText(ProgressText::sizesOf(progress));
    _form->timeLeftTF->setText(ProgressText::timeLeftOf(progress));
    _announce();
}

void ProgressSheet::finish()
{
    _form->progress->setFraction(1);
    _form->nameTF->clear();
    _form->timeLeftTF->clear();
    _form->cancelButton->setEnabled(false);
    _announce();
}

void ProgressSheet::_announce()
{
    const int tenths = _form->progress->tenths();
    QStringList words(_form->statusTF->text());
    if (tenths > 0 && _form->cancelButton->isEnabled()) // afterwards the status tells
        words += QLocale().toString(tenths * 10) + QLocale().percent();
    const QString announcement = words.join(QLatin1Char(' ')).trimmed();
    if (announcement != accessibleDescription())
        setAccessibleDescription(announcement);
}

// For the longest texts that are likely, so that the sheet keeps its width.
void ProgressSheet::_makeRoom()
{
    constexpr std::uint64_t longSize = 888'000'000'000;
    const JobProgress longest{.bytesDone = longSize,
        .bytesInAll = longSize,
        .bytesPerSecond = double{longSize},
        .timeLeft = 55s};
    const QString texts[] = {ProgressText::sizesOf(longest), ProgressText::timeLeftOf(longest),
        ProgressText::timeLeftOf({.timeLeft = 88min})};
    int width = 0;
    for (const QString& text : texts)
        width = std::max(width, fontMetrics().horizontalAdvance(text));
    _form->sizeTF->setMinimumWidth(width);
}

void ProgressSheet::showEvent(QShowEvent* event)
{
    _makeRoom();
    QDialog::showEvent(event);
    // It comes up by itself: keys meant for what was there before must not press Cancel.
    setFocusPolicy(Qt::ClickFocus);
    setFocus();
    if (QWidget* question = QApplication::activeModalWidget()) { // asked a moment before
        question->raise();
        question->activateWindow();
    }
}
