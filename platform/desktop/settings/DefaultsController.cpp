#include "platform/desktop/settings/DefaultsController.h"

#include "platform/desktop/settings/ControlValue.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace
{

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
    QObject::connect(&_defaults, &UserDefaults::didChange, this, &DefaultsController::_show);
}

QStringList DefaultsController::bind(QWidget* root)
{
    QStringList unbound;
    QList<QWidget*> controls = root->findChildren<QWidget*>();
    controls.prepend(root);
    for (QWidget* control : std::as_const(controls)) {
        const QString key = control->property("defaultsKey").toString();
        if (key.isEmpty())
            continue;
        const bool isBound = ControlValue::onChange(control, this,
            [this, key, control](const QVariant& value) { _edit(key, control, value); });
        if (!isBound) {
            unbound.append(control->objectName());
            continue;
        }
        _controls[key].push_back(control);
        QObject::connect(control, &QObject::destroyed, this,
            [this, key, control] { std::erase(_controls[key], control); });
        _show(key);
    }
    return unbound;
}

void DefaultsController::setAppliesImmediately(bool appliesImmediately)
{
    _appliesImmediately = appliesImmediately;
    if (_appliesImmediately)
        save();
}

void DefaultsController::save()
{
    const QVariantMap edits = std::exchange(_edits, {});
    for (auto edit = edits.begin(); edit != edits.end(); ++edit)
        _defaults.setObject(edit.value(), edit.key());
}

void DefaultsController::revert()
{
    _edits.clear();
    for (const auto& [key, controls] : _controls)
        _show(key);
}

// As the kind of value that the control has.
QVariant DefaultsController::_storedValue(const QString& key, const QWidget* control) const
{
    switch (ControlValue::propertyOf(control).typeId()) {
    case QMetaType::Bool:
        return _defaults.boolForKey(key);
    case QMetaType::Int:
        return intOf(_defaults.integerForKey(key));
    default:
        return _defaults.stringForKey(key).value_or(QString());
    }
}

void DefaultsController::_edit(const QString& key, const QWidget* control, const QVariant& value)
{
    if (_isShowing)
        return;
    if (_appliesImmediately) {
        _defaults.setObject(value, key); // which shows it
        return;
    }
    if (value == _storedValue(key, control))
        _edits.remove(key);
    else
        _edits.insert(key, value);
    _show(key);
}

void DefaultsController::_show(const QString& key)
{
    const auto found = _controls.find(key);
    if (found == _controls.end() || _isShowing)
        return;
    _isShowing = true; // a control that cannot show a value must not store another one
    for (QWidget* control : found->second)
        ControlValue::setValue(control, _edits.value(key, _storedValue(key, control)));
    _isShowing = false;
}
