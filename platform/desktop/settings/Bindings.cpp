#include "platform/desktop/settings/Bindings.h"

#include "platform/desktop/settings/ControlValue.h"

namespace
{

void bindValue(QWidget* control, QObject* controller, const QMetaProperty& property)
{
    const auto show = [=] { ControlValue::setValue(control, property.read(controller)); };
    ControlValue::onChange(controller, property, control, show);
    show();
    if (!property.isWritable())
        return;
    // The controller may make something else of the value, which the control shows then.
    ControlValue::onChange(control, ControlValue::propertyOf(control), controller, [=] {
        const QVariant value = ControlValue::valueOf(control);
        if (property.read(controller) != value)
            property.write(controller, value);
        show();
    });
}

void bindEnabled(QObject* object, QObject* controller, const QMetaProperty& property)
{
    const auto show = [=] { object->setProperty("enabled", property.read(controller)); };
    ControlValue::onChange(controller, property, object, show);
    show();
}

// The controller's property that the object names; not valid when it names none.
QMetaProperty propertyNamed(const QObject* object, const char* kind, const QObject* controller)
{
    const QByteArray name = object->property(kind).toByteArray();
    const QMetaObject* type = controller->metaObject();
    const QMetaProperty property = type->property(type->indexOfProperty(name.constData()));
    Q_ASSERT_X(name.isEmpty() || property.isValid(), kind, name.constData());
    return property;
}

} // namespace

void Bindings::bindAll(QWidget* root, QObject* controller)
{
    for (QWidget* control : root->findChildren<QWidget*>())
        if (const auto value = propertyNamed(control, "boundTo", controller); value.isValid())
            bindValue(control, controller, value);
    for (QObject* object : root->findChildren<QObject*>())
        if (const auto state = propertyNamed(object, "enabledBy", controller); state.isValid())
            bindEnabled(object, controller, state);
}
