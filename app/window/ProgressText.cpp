#include "app/window/ProgressText.h"

#include "platform/desktop/services/SizeText.h"

#include <QLocale>

#include <chrono>

using namespace std::chrono_literals;

QString ProgressText::sizesOf(const JobProgress& progress)
{
    if (progress.bytesInAll == 0)
        return {};
    const QString done = SizeText::of(static_cast<double>(progress.bytesDone));
    const QString inAll = SizeText::of(static_cast<double>(progress.bytesInAll));
    return progress.bytesPerSecond
        ? tr("%1 of %2 (%3/s)").arg(done, inAll, SizeText::of(*progress.bytesPerSecond))
        : tr("%1 of %2").arg(done, inAll);
}

QString ProgressText::timeLeftOf(const JobProgress& progress)
{
    if (!progress.timeLeft)
        return {};
    const std::chrono::seconds time = *progress.timeLeft;
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
