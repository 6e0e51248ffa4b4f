#include "platform/desktop/DefaultApplication.h"

#include <QProcess>
#include <QTimer>

#include <chrono>
#include <utility>

namespace
{

// It takes some tenths of a second; on a desktop that it asks by D-Bus, as long as that hangs.
constexpr std::chrono::seconds longestWait{5};

} // namespace

void DefaultApplication::query(
    const QString& type, QObject* context, std::function<void(const QString& id)> then)
{
    auto* process = new QProcess(context);
    const auto finish = [process, then = std::move(then)] {
        if (!process->parent())
            return; // told already
        const QString id = QString::fromUtf8(process->readLine()).trimmed();
        process->setParent(nullptr);
        process->kill();
        process->deleteLater();
        then(id);
    };
    QObject::connect(process, &QProcess::finished, process, finish);
    QObject::connect(process, &QProcess::errorOccurred, process, finish, Qt::QueuedConnection);
    QTimer::singleShot(longestWait, process, finish);
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(QStringLiteral("xdg-mime"),
        {QStringLiteral("query"), QStringLiteral("default"), type}, QIODevice::ReadOnly);
}
