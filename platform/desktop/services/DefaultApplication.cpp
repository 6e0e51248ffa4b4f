#include "platform/desktop/services/DefaultApplication.h"

#include <QProcess>
#include <QTimer>

#include <chrono>
#include <utility>

namespace
{

// It takes some tenths of a second; on a desktop that it asks by D-Bus, as long as that hangs.
constexpr std::chrono::seconds longestWait{5};

// One run of xdg-mime. Goes when it has told.
class Query : public QObject
{
public:
    Query(const QString& type, QObject* context, std::function<void(const QString&)> then)
        : QObject(context)
        , _then(std::move(then))
    {
        const auto finish = [this] { _finish(); };
        connect(&_process, &QProcess::finished, this, finish);
        connect(&_process, &QProcess::errorOccurred, this, finish, Qt::QueuedConnection);
        QTimer::singleShot(longestWait, this, finish);
        _process.setStandardInputFile(QProcess::nullDevice());
        _process.setStandardErrorFile(QProcess::nullDevice());
        _process.start(QStringLiteral("xdg-mime"),
            {QStringLiteral("query"), QStringLiteral("default"), type}, QIODevice::ReadOnly);
    }

    ~Query() override
    {
        _process.disconnect(this);
        _process.kill();
        _process.waitForFinished(); // which is at once, then
    }

private:
    void _finish()
    {
        if (!_then)
            return;
        deleteLater();
        std::exchange(_then, nullptr)(QString::fromUtf8(_process.readLine()).trimmed());
    }

    QProcess _process;
    std::function<void(const QString&)> _then;
};

} // namespace

void DefaultApplication::query(
    const QString& type, QObject* context, std::function<void(const QString& id)> then)
{
    new Query(type, context, std::move(then));
}
