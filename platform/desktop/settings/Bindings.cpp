#include "platform/desktop/settings/Bindings.h"

#include "platform/desktop/settings/ControlValue.h"
#include "platform/desktop/settings/PropertyObserver.h"

#include <QMetaProperty>

#include <array>
#include <functional>
#include <utility>

namespace
{

// What follows the controller's property, given the bound object and that property.
using Binder = bool (*)(QObject* object, QObject* controller, const QMetaProperty& property);

void follow(QObject* controller, const QMetaProperty& property, QObject* object,
    const std::function<void(const QVariant&)>& show)
{
    PropertyObserver::observe(controller, property, object,
        [controller, property, show] { show(property.read(controller)); });
    show(property.read(controller));
}

bool bindValue(QObject* object, QObject* controller, const QMetaProperty& property)
{
    auto* control = qobject_cast<QWidget*>(object);
    if (!control || !ControlValue::propertyOf(control).isValid())
        return false;
    follow(controller, property, control,
        [control](const QVariant& value) { ControlValue::setValue(control, value); });
    if (!property.isWritable())
        return true;
    // The controller may make something else of the value, which the control shows then.
    ControlValue::onChange(control, controller, [=](const QVariant& value) {
        if (property.read(controller) != value)
            property.write(controller, value);
        ControlValue::setValue(control, property.read(controller));
    });
    return true;
}

template <const char* own>
bool bindState(QObject* object, QObject* controller, const QMetaProperty& property)
{
    if (object->metaObject()->indexOfProperty(own) < 0)
        return false;
    follow(controller, property, object,
        [object](const QVariant& value) { object->setProperty(own, value.toBool()); });
    return true;
}

constexpr char enabled[] = "enabled";
constexpr char visible[] = "visible";

struct Kind {
    const char* name; // of the dynamic property
    Binder bind;
};
constexpr std::array kinds{Kind{"boundTo", bindValue}, Kind{"enabledBy", bindState<enabled>},
    Kind{"visibleBy", bindState<visible>}};

} // namespace

QStringList Bindings::bind(QWidget* root, QObject* controller)
{
    QStringList unbound;
    QList<QObject*> objects = root->findChildren<QObject*>();
    objects.prepend(root);
    const QMetaObject* type = controller->metaObject();
    for (QObject* object : std::as_const(objects)) {
        for (const Kind& kind : kinds) {
            const QString name = object->property(kind.name).toString();
            if (name.isEmpty())
                continue;
            const auto property = type->property(type->indexOfProperty(name.toUtf8().constData()));
            if (!property.isValid() || !kind.bind(object, controller, property))
                unbound.append(object->objectName() + QStringLiteral(": ") + name);
        }
    }
    return unbound;
}

void Bindings::bindAll(QWidget* root, QObject* controller)
{
    [[maybe_unused]] const QStringList unbound = bind(root, controller);
    Q_ASSERT_X(unbound.isEmpty(), "bindAll", qPrintable(unbound.join(u'\n')));
}
