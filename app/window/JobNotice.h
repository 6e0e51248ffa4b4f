// A job's one notification on the desktop: how far it is, and then what has come of it, in the same
// place. Its buttons show the archive and open it. Main thread.
#pragma once

#include "app/job/ArchiveJob.h"
#include "platform/desktop/services/Notification.h"

#include <QObject>

#include <filesystem>

class JobNotice : public QObject
{
    Q_OBJECT

public:
    using Path = std::filesystem::path;

    explicit JobNotice(QObject* parent = nullptr);

    // With a button that cancels.
    void showProgress(const Path& archive, const JobProgress& progress);

    // What it leads to: the program's window, by a click on the whole; the archive, by the buttons
    // and, where there is no window, a click.
    struct Leads {
        bool toWindow = false;
        bool toArchive = false;
    };

    // Of a job that was not cancelled.
    void showResult(const ArchiveJob::Result& result, Leads leads);

    void close() { _notification.close(); }
    [[nodiscard]] bool isShown() const { return _notification.isShown(); }

Q_SIGNALS:
    void cancelled();
    void windowWanted(const QByteArray& activationToken);
    void gone(); // by the user, or there is nobody who shows any

private:
    void _obey(const QString& action, const QByteArray& activationToken);

    Notification _notification;
    Path _archive; // that was made
    bool _leadsToWindow = false;
};
