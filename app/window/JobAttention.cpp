#include "app/window/JobAttention.h"

#include <QApplication>
#include <QProgressBar>
#include <QWidget>
#include <QWindow>

#include <algorithm>

JobAttention::JobAttention(QWidget& window, const QProgressBar& progress, Thresholds thresholds)
    : _window(window)
    , _progress(progress)
    , _thresholds(thresholds)
{
    _untilHeldOff.setSingleShot(true);
    connect(&_untilHeldOff, &QTimer::timeout, this,
        [this] { _inhibitor.hold(JobNotice::tr("An archive is being made")); });
    connect(&progress, &QProgressBar::valueChanged, this, &JobAttention::_showProgress);
    connect(&_notice, &JobNotice::windowWanted, this, &JobAttention::windowWanted);
    // Whoever comes to the window sees there what has come of it.
    connect(qApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* focused) {
        if (focused != nullptr)
            _notice.close();
    });
}

// A button of a program that is gone would do nothing; what has none may stay.
JobAttention::~JobAttention()
{
    if (_leads)
        _notice.close();
    _launcherEntry.hideProgress();
}

void JobAttention::begin()
{
    _isUnderWay = true;
    _knowsFraction = false;
    _time.start();
    _untilHeldOff.start(_thresholds.untilHeldOff);
    _launcherEntry.showProgress(0); // the bar may still show the job before
}

void JobAttention::end(const ArchiveJob::Result& result, JobNotice::Leads leads)
{
    _isUnderWay = false;
    _untilHeldOff.stop();
    _inhibitor.release();
    _launcherEntry.hideProgress();
    const bool wasCancelled = !result.isMade && !result.problem;
    if (wasCancelled || QApplication::activeWindow() != nullptr)
        return;
    QApplication::alert(&_window);
    if (_time.hasExpired(_thresholds.untilTold.count())) {
        _leads = leads.toWindow || leads.toArchive;
        _notice.showResult(result, leads);
    }
}

void JobAttention::advanceTo(double fraction)
{
    _knowsFraction = true;
    if (_isUnderWay)
        _launcherEntry.showProgress(fraction);
}

void JobAttention::_showProgress()
{
    if (_isUnderWay && !_knowsFraction)
        _launcherEntry.showProgress(
            static_cast<double>(_progress.value()) / std::max(_progress.maximum(), 1));
}
