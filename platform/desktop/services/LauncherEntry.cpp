#include "platform/desktop/services/LauncherEntry.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/services/BusCall.h"

#include <QDBusMessage>
#include <QVariantMap>

#include <chrono>

#include <unistd.h>

using namespace std::chrono_literals;

LauncherEntry::LauncherEntry(QObject* parent)
    : QObject(parent)
{
    _pause.setSingleShot(true);
    _pause.setInterval(250ms); // more often nobody can see it
    connect(&_pause, &QTimer::timeout, this, [this] {
        if (_hasChanged)
            _send();
    });
}

void LauncherEntry::showProgress(double fraction)
{
    _hasChanged = _hasChanged || !_isVisible || fraction != _fraction;
    _fraction = fraction;
    _isVisible = true;
    if (_hasChanged && !_pause.isActive())
        _send();
}

void LauncherEntry::hideProgress()
{
    if (!_isVisible)
        return;
    _isVisible = false;
    _send(); // at once: the program may end
}

void LauncherEntry::_send()
{
    _hasChanged = false;
    _pause.start();
    QDBusMessage update = QDBusMessage::createSignal(
        QStringLiteral("/com/canonical/unity/launcherentry/%1").arg(::getpid()),
        QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
    update
        << QStringLiteral("application://%1.desktop").arg(QLatin1String(Bundle::bundleIdentifier))
        << QVariantMap{{QStringLiteral("progress"), _fraction},
               {QStringLiteral("progress-visible"), _isVisible}};
    BusCall::sendOnly(update, this);
}
