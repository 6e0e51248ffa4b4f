#include "platform/desktop/settings/PropertyObserver.h"

#include <utility>

PropertyObserver::PropertyObserver(QObject* context, std::function<void()> function)
    : QObject(context)
    , _function(std::move(function))
{
}

bool PropertyObserver::observe(QObject* observed, const QMetaProperty& property, QObject* context,
    std::function<void()> function)
{
    if (!property.hasNotifySignal())
        return false;
    auto* observer = new PropertyObserver(context, std::move(function));
    const QMetaObject& type = staticMetaObject;
    QObject::connect(
        observed, property.notifySignal(), observer, type.method(type.indexOfSlot("_changed()")));
    QObject::connect(observed, &QObject::destroyed, observer, &QObject::deleteLater);
    return true;
}

void PropertyObserver::_changed()
{
    _function();
}
