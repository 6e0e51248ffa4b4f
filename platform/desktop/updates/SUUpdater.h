// Looks into the update feed, compares versions, tells and opens the page to download from. It
// never downloads or replaces the program, and looks for nothing where the system's package has
// installed it. Main thread. One check at a time; while its sheet is up there is no other.
#pragma once

#include "platform/desktop/updates/AppcastReader.h"
#include "platform/desktop/updates/FeedDownload.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <QVariant>
#include <QWidget>

#include <chrono>
#include <functional>

class QDialog;

class SUUpdater : public QObject
{
    Q_OBJECT

public:
    // The user defaults: "SUFeedURL" is read, "SULastCheckTime" read and written: whole seconds
    // from the start of 2001 (UTC) to when a server last answered.
    struct Defaults {
        std::function<QVariant(const QString& key)> objectForKey;
        std::function<void(const QString& key, const QVariant& object)> setObject;
    };

    static constexpr std::chrono::milliseconds usualTimeout{15000};

    explicit SUUpdater(Defaults defaults, std::chrono::milliseconds timeout = usualTimeout);

    // Where the sheets go; none: windows of their own.
    void setParentWindow(QWidget* window) { _parentWindow = window; }

    // Always answers: with what is newer, that nothing is, or what went wrong.
    void checkForUpdates(QObject* sender);

    // Answers only with what is newer, and waits with that while a dialog blocks the program
    // or its window is not on screen. Does nothing within a day of the last check.
    void checkForUpdatesInBackground();

private:
    [[nodiscard]] bool _isDue() const;
    [[nodiscard]] bool _canTell() const;
    void _start();
    void _finish();
    void _tell(const AppcastReader::Item* newest);
    void _tellProblem(const QString& problem);
    void _show(QDialog* sheet);

    Defaults _defaults;
    FeedDownload _download;
    FeedDownload::Result _result; // of the last download, until it is told
    QTimer _retry; // runs while it cannot be told
    QPointer<QWidget> _parentWindow;
    QPointer<QDialog> _sheet;
    bool _isAsked = false; // by the user, who waits for an answer
};
