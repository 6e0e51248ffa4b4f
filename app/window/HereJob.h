// One archive without a window and without a question: beside its files, or in the folder that is
// chosen in the settings, under the name that the window would propose or the next free one. How it
// goes is told by a notification, and what came of it on the standard streams too, as the command
// line does. Main thread.
#pragma once

#include "app/job/ArchiveJob.h"
#include "app/window/JobNotice.h"
#include "platform/desktop/services/Inhibitor.h"
#include "platform/desktop/services/LauncherEntry.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <filesystem>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class ScratchFolder;

class HereJob : public QObject
{
    Q_OBJECT

public:
    using Path = std::filesystem::path;

    // When a job counts as a long one.
    struct Thresholds {
        std::chrono::milliseconds untilShown{1500}; // with what a slow bus takes, two seconds
        std::chrono::milliseconds untilHeldOff{2000};
    };

    // Paths, absolute or not, and addresses of files.
    HereJob(const std::vector<Path>& files, Thresholds thresholds);
    ~HereJob() override;

    void start();

    // The archive is not made and nothing left behind; after the end, what still waits ends.
    void stop();

Q_SIGNALS:
    // All is told on the standard streams: 0 when the archive is made, 1 when it is not or lacks
    // something, 130 when the job was stopped.
    void ended(int status);

    // And nobody can ask for the archive by the notification any more.
    void finished();

private:
    void _addFile(const Path& file);
    void _leaveOut(const Path& file, const std::string& reason);
    void _begin();
    [[nodiscard]] ArchiveJob::Request _request() const;
    void _abandonUntilEnded();
    void _showProgress();
    void _end(ArchiveJob::Result result);
    void _letGo();
    void _finish();

    std::vector<Path> _items;
    LeftOut _leftOut; // of what was given
    Path _archive; // as it is to be called
    std::unique_ptr<ScratchFolder> _workingFolder;
    std::unique_ptr<Archiver> _engine;
    std::unique_ptr<ArchiveJob> _job;
    std::mutex _progressMutex;
    JobProgress _progress; // guarded by it: the worker tells
    bool _isStopped = false;
    bool _showsNotice = true; // of the progress
    bool _hasEnded = false;

    QTimer _untilHeldOff;
    QTimer _untilShown; // and then until it is shown anew
    Inhibitor _inhibitor;
    LauncherEntry _launcherEntry;
    JobNotice _notice;
    std::future<void> _worker; // last: it uses all of the above
};
