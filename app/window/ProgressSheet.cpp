#include "app/window/ProgressSheet.h"

#include "platform/desktop/services/PathText.h"
#include "ui_ProgressWindow.h"

#include <QApplication>
#include <QLocale>

#include <algorithm>
#include <cmath>

namespace
{

// With a decimal as long as there is one digit before it.
QString sizeText(double bytes)
{
    const QLocale locale;
    const auto count = static_cast<qint64>(std::llround(bytes));
    double value = bytes;
    while (value >= 999.5)
        value /= 1000;
    return locale.formattedDataSize(count, value < 9.95 ? 1 : 0, QLocale::DataSizeSIFormat);
}

} // namespace

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
    _form->sizeTF->setText(progress.bytesInAll > 0 ? _sizes(progress) : QString());
    _form->timeLeftTF->setText(progress.timeLeft ? _timeLeft(*progress.timeLeft) : QString());
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

QString ProgressSheet::_sizes(const JobProgress& progress)
{
    const QString done = sizeText(static_cast<double>(progress.bytesDone));
    const QString inAll = sizeText(static_cast<double>(progress.bytesInAll));
    return progress.bytesPerSecond
        ? tr("%1 of %2 (%3/s)").arg(done, inAll, sizeText(*progress.bytesPerSecond))
        : tr("%1 of %2").arg(done, inAll);
}

QString ProgressSheet::_timeLeft(std::chrono::seconds time)
{
    using namespace std::chrono_literals;
    const auto number = [](auto count) { return QLocale().toString(qlonglong{count.count()}); };
    if (time <= 5s)
        return tr("A few seconds left");
    if (time < 1min)
        return tr("About %1 seconds left").arg(number(time));
    if (time < 2min)
        return tr("About a minute left");
    if (time < 2h)
        return tr("About %1 minutes left")
            .arg(number(std::chrono::floor<std::chrono::minutes>(time)));
    return tr("About %1 hours left").arg(number(std::chrono::round<std::chrono::hours>(time)));
}

// For the longest texts that are likely, so that the sheet keeps its width.
void ProgressSheet::_makeRoom()
{
    constexpr std::uint64_t longSize = 888'000'000'000;
    const QString texts[] = {
        _sizes({.bytesDone = longSize, .bytesInAll = longSize, .bytesPerSecond = double{longSize}}),
        _timeLeft(std::chrono::seconds(55)), _timeLeft(std::chrono::minutes(88))};
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
