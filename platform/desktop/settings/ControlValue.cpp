#include "platform/desktop/settings/ControlValue.h"

#include <QComboBox>
#include <QLabel>

#include <utility>

namespace
{

// What a signal that is known only by name can be connected to.
class Observer : public QObject
{
    Q_OBJECT

public:
    Observer(QObject* context, std::function<void()> function)
        : QObject(context)
        , _function(std::move(function))
    {
    }

    Q_SLOT void notice() { _function(); }

private:
    const std::function<void()> _function;
};

} // namespace

QMetaProperty ControlValue::propertyOf(const QWidget* control)
{
    const QMetaObject* type = control->metaObject();
    if (qobject_cast<const QComboBox*>(control))
        return type->property(type->indexOfProperty("currentIndex"));
    if (qobject_cast<const QLabel*>(control))
        return type->property(type->indexOfProperty("text"));
    return type->userProperty();
}

QVariant ControlValue::valueOf(const QWidget* control)
{
    const auto* box = qobject_cast<const QComboBox*>(control);
    return box ? box->currentData() : propertyOf(control).read(control);
}

void ControlValue::setValue(QWidget* control, const QVariant& value)
{
    const auto* box = qobject_cast<const QComboBox*>(control);
    QVariant shown = box ? QVariant(box->findData(value)) : value;
    const QMetaProperty property = propertyOf(control);
    shown.convert(property.metaType());
    if (property.read(control) != shown)
        property.write(control, shown);
}

void ControlValue::onChange(QObject* object, const QMetaProperty& property, QObject* context,
    std::function<void()> function)
{
    if (!property.hasNotifySignal())
        return;
    auto* observer = new Observer(context, std::move(function));
    const QMetaObject& type = Observer::staticMetaObject;
    QObject::connect(
        object, property.notifySignal(), observer, type.method(type.indexOfSlot("notice()")));
    QObject::connect(object, &QObject::destroyed, observer, &QObject::deleteLater);
}

#include "ControlValue.moc"
