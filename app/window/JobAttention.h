// What the desktop is told of the window's job: its progress at the program's icon; that suspend
// and logout wait, when it takes long; and how it ended, when it took longer and the window is not
// the one that is used. It follows the progress bar. Main thread.
#pragma once

#include "app/job/ArchiveJob.h"
#include "app/window/JobNotice.h"
#include "platform/desktop/services/Inhibitor.h"
#include "platform/desktop/services/LauncherEntry.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>

class QProgressBar;
class QWidget;

class JobAttention : public QObject
{
    Q_OBJECT

public:
    // Shorter jobs are not worth it.
    struct Thresholds {
        std::chrono::milliseconds untilHeldOff{2000};
        std::chrono::milliseconds untilTold{5000};
    };

    // The window and the bar are borrowed.
    JobAttention(QWidget& window, const QProgressBar& progress, Thresholds thresholds);
    ~JobAttention() override;

    void begin();
    void advanceTo(double fraction); // 0 to 1; until it is known the bar's lines tell

    // What the notification leads to is up to whoever knows where the archive is and whether the
    // program stays.
    void end(const ArchiveJob::Result& result, JobNotice::Leads leads);

Q_SIGNALS:
    void windowWanted(const QByteArray& activationToken);

private:
    void _showProgress();

    QWidget& _window;
    const QProgressBar& _progress;
    const Thresholds _thresholds;
    bool _isUnderWay = false;
    bool _knowsFraction = false;
    bool _leads = false; // the notification, to where there is something as long as we are
    QElapsedTimer _time;
    QTimer _untilHeldOff;
    Inhibitor _inhibitor;
    LauncherEntry _launcherEntry;
    JobNotice _notice;
};
