#include "platform/desktop/settings/ControlValue.h"

#include "platform/desktop/settings/PropertyObserver.h"

#include <QComboBox>
#include <QLabel>

#include <utility>

namespace
{

bool haveData(const QComboBox* box)
{
    for (int index = 0; index < box->count(); ++index)
        if (box->itemData(index).isValid())
            return true;
    return false;
}

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
    return box && haveData(box) ? box->currentData() : propertyOf(control).read(control);
}

void ControlValue::setValue(QWidget* control, const QVariant& value)
{
    const auto* box = qobject_cast<const QComboBox*>(control);
    QVariant shown = box && haveData(box) ? QVariant(box->findData(value)) : value;
    const QMetaProperty property = propertyOf(control);
    shown.convert(property.metaType());
    if (property.read(control) != shown)
        property.write(control, shown);
}

bool ControlValue::onChange(
    QWidget* control, QObject* context, std::function<void(const QVariant&)> function)
{
    return PropertyObserver::observe(control, propertyOf(control), context,
        [control, function = std::move(function)] { function(valueOf(control)); });
}
