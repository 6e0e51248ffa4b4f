// Binds what a form shows to the properties of a controller, by dynamic properties that the form
// sets: "boundTo" names the property that a control's value follows, and that follows the control
// where both can be changed; "enabledBy" and "visibleBy" name one that says whether the control (or
// the action) is enabled, or is shown. Each follows the notification of the controller's property.
//
// All on one thread; a binding ends with either object.
#pragma once

#include <QObject>
#include <QStringList>
#include <QWidget>

namespace Bindings
{

// Binds the widget and all that is in it, from the controller's values on. Combo boxes must have
// their items by then. Returns what cannot be bound, as "control: property": an unknown property of
// the controller, or a control without a value. A program without mistakes gets nothing.
[[nodiscard]] QStringList bind(QWidget* root, QObject* controller);

// The same for a program without mistakes, which is checked with assertions on.
void bindAll(QWidget* root, QObject* controller);

} // namespace Bindings
