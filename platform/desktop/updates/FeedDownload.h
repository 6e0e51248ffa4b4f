// Fetches a small file by HTTP, and as little as possible of one that has not changed since this
// object fetched it. Says nothing about the user or the machine but the program's name and version.
// Main thread; one download at a time.
#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <functional>

class QNetworkReply;

class FeedDownload : public QObject
{
    Q_OBJECT

public:
    struct Result {
        QByteArray bytes;
        QString problem; // for people to read; empty: none
        bool isAnswered = false; // by a server, whatever it said
    };
    using Completion = std::function<void(const Result& result)>;

    FeedDownload(qsizetype largestSizeInBytes, std::chrono::milliseconds timeout);

    // Calls back once, later. The address is one of HTTP or HTTPS; redirections are followed, but
    // not from the latter to the former.
    void start(const QUrl& url, const Completion& completion);

    [[nodiscard]] bool isRunning() const { return _reply != nullptr; }

private:
    void _read();
    void _finish(const QUrl& url, const Completion& completion);
    [[nodiscard]] QString _problem() const;

    const qsizetype _largestSizeInBytes;
    const std::chrono::milliseconds _timeout; // without a byte; several of them in all
    QNetworkAccessManager _manager;
    QNetworkReply* _reply = nullptr; // the one that is running
    QTimer _deadline;
    QByteArray _received;

    QUrl _knownURL; // what the two below belong to
    QByteArray _knownTag;
    QByteArray _knownBytes;
};
