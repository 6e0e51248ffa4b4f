// Binds what a form shows to the properties of a controller, by dynamic properties that the form
// sets: "boundTo" names the property that a control's value follows, and that follows the control
// where both can be changed; "enabledBy" names one that says whether the control (or the action) is
// enabled. Each follows the notification of the controller's property.
//
// All on one thread; a binding ends with either object.
#pragma once

#include <QWidget>

namespace Bindings
{

// Binds all that is in the widget, from the controller's values on. Combo boxes must have their
// items by then. A name that the controller does not know fails an assertion.
void bindAll(QWidget* root, QObject* controller);

} // namespace Bindings
