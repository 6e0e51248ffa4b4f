#include "platform/desktop/settings/DefaultsController.h"

#include "platform/desktop/settings/ControlValue.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace
{

QString keyOf(const QWidget* control)
{
    return control->property("defaultsKey").toString();
}

int intOf(qint64 number)
{
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<qint64>(number, Limits::min(), Limits::max()));
}

} // namespace

DefaultsController::DefaultsController(UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , _defaults(defaults)
{
    connect(&_defaults, &UserDefaults::didChange, this, &DefaultsController::_show);
}

void DefaultsController::bind(QWidget* root)
{
    for (QWidget* control : root->findChildren<QWidget*>()) {
        if (keyOf(control).isEmpty())
            continue;
        ControlValue::onChange(
            control, ControlValue::propertyOf(control), this, [this, control] { _edit(control); });
        _controls.emplace_back(control);
    }
    _show();
}

void DefaultsController::save()
{
    _defaults.setObjects(std::exchange(_edits, {}));
}

void DefaultsController::revert()
{
    _edits.clear();
    _show();
}

QVariant DefaultsController::_storedValue(const QWidget* control) const
{
    if (ControlValue::propertyOf(control).typeId() == QMetaType::Bool)
        return _defaults.boolForKey(keyOf(control));
    return intOf(_defaults.integerForKey(keyOf(control)));
}

void DefaultsController::_edit(const QWidget* control)
{
    const QVariant value = ControlValue::valueOf(control);
    if (_isShowing)
        return;
    if (value == _storedValue(control))
        _edits.remove(keyOf(control));
    else
        _edits.insert(keyOf(control), value);
}

void DefaultsController::_show()
{
    _isShowing = true; // a control that cannot show a value must not store another one
    for (QWidget* control : _controls)
        if (control)
            ControlValue::setValue(control, _edits.value(keyOf(control), _storedValue(control)));
    _isShowing = false;
}
