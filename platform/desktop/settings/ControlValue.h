// The one value that a control of any kind shows and lets the user change: whether it is checked,
// its number, its text. A combo box has the data of its current item. Labels show a text.
#pragma once

#include <QMetaProperty>
#include <QVariant>
#include <QWidget>

#include <functional>

namespace ControlValue
{

// The property behind the value; not valid for a widget without a value.
[[nodiscard]] QMetaProperty propertyOf(const QWidget* control);

[[nodiscard]] QVariant valueOf(const QWidget* control);

// Does nothing when the control shows the value already: the cursor of a text stays where it is.
void setValue(QWidget* control, const QVariant& value);

// Calls the function each time the property, which is known only by name, tells of a change, as
// long as both objects live. Nothing for a property that never tells.
void onChange(QObject* object, const QMetaProperty& property, QObject* context,
    std::function<void()> function);

} // namespace ControlValue
