// The program's icon in docks and task bars: how far a job is, as the interface
// com.canonical.Unity.LauncherEntry shows it. Where nobody listens, nothing happens. Main thread.
#pragma once

#include <QObject>
#include <QTimer>

class LauncherEntry : public QObject
{
public:
    explicit LauncherEntry(QObject* parent = nullptr);

    // From 0 to 1; as often as one likes.
    void showProgress(double fraction);
    void hideProgress();

private:
    void _send();

    double _fraction = 0;
    bool _isVisible = false;
    QTimer _pause; // between two signals
    bool _hasChanged = false; // since the last one
};
