#include "platform/desktop/updates/FeedDownload.h"

#include <QCoreApplication>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <utility>

namespace
{

constexpr int notModified = 304;
constexpr int mostRedirections = 5;

// A server that sends a byte now and then never meets the timeout: this many of them are the end.
constexpr int timeoutsInAll = 4;

QNetworkRequest requestFor(const QUrl& url)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::UserAgentHeader,
        QString(
            QCoreApplication::applicationName() + u'/' + QCoreApplication::applicationVersion()));
    request.setRawHeader("Accept-Language", "*"); // Qt would send the user's
    request.setRawHeader("Accept-Encoding", "identity"); // the size that arrives is the size
    request.setAttribute(
        QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirections);
    for (const auto cookies :
        {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute})
        request.setAttribute(cookies, QNetworkRequest::Manual);
    return request;
}

int statusOf(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

} // namespace

FeedDownload::FeedDownload(qsizetype largestSizeInBytes, std::chrono::milliseconds timeout)
    : _largestSizeInBytes(largestSizeInBytes)
    , _timeout(timeout)
{
    _deadline.setSingleShot(true);
    connect(&_deadline, &QTimer::timeout, this, [this] {
        if (_reply)
            _reply->abort();
    });
}

void FeedDownload::start(const QUrl& url, const Completion& completion)
{
    QNetworkRequest request = requestFor(url);
    request.setTransferTimeout(static_cast<int>(_timeout.count()));
    if (url == _knownURL && !_knownTag.isEmpty())
        request.setRawHeader("If-None-Match", _knownTag);

    _received.clear();
    _reply = _manager.get(request);
    _reply->setParent(this);
    connect(_reply, &QNetworkReply::readyRead, this, &FeedDownload::_read);
    connect(_reply, &QNetworkReply::finished, this, [this, url, completion] {
        _read();
        _finish(url, completion);
    });
    _deadline.start(_timeout * timeoutsInAll);
}

void FeedDownload::_read()
{
    const bool wasTooLarge = _received.size() > _largestSizeInBytes;
    if (!wasTooLarge && _reply->isOpen())
        _received += _reply->read(_largestSizeInBytes + 1 - _received.size());
    if (!wasTooLarge && _received.size() > _largestSizeInBytes)
        _reply->abort(); // comes back here by way of finished()
}

void FeedDownload::_finish(const QUrl& url, const Completion& completion)
{
    _deadline.stop();
    const int status = statusOf(*_reply);
    Result result{.bytes = {}, .problem = _problem(), .isAnswered = status != 0};
    if (result.problem.isEmpty() && status != notModified) {
        _knownURL = url;
        _knownTag = _reply->rawHeader("ETag");
        _knownBytes = std::exchange(_received, {});
    }
    if (result.problem.isEmpty())
        result.bytes = _knownBytes;
    std::exchange(_reply, nullptr)->deleteLater();
    completion(result);
}

QString FeedDownload::_problem() const
{
    const int status = statusOf(*_reply);
    if (_received.size() > _largestSizeInBytes)
        return tr("What the server sends is too large to be a list of versions.");
    if (_reply->error() == QNetworkReply::OperationCanceledError
        || _reply->error() == QNetworkReply::TimeoutError)
        return tr("The server does not answer in time.");
    if (status >= 400)
        return tr("The server answers with error %1.").arg(status);
    if (_reply->error() != QNetworkReply::NoError)
        return _reply->errorString();
    return {};
}
