// Stands between controls and the settings. A control is bound by the dynamic property
// "defaultsKey", as a form sets it: check boxes and other checkable buttons hold a boolean, spin
// boxes, sliders and combo boxes an integer (the data of the item, or its index), line edits a
// text. All controls of one key show the same, and follow what the settings tell of.
//
// Lives on the main thread. The settings must outlive it; controls may go before.
#pragma once

#include "platform/desktop/settings/UserDefaults.h"

#include <QVariantMap>
#include <QWidget>

#include <map>
#include <vector>

class DefaultsController : public QObject
{
    Q_OBJECT

public:
    explicit DefaultsController(
        UserDefaults& defaults = UserDefaults::standardUserDefaults(), QObject* parent = nullptr);

    // Binds all controls with a key in this widget, which shows what is stored from now on. Combo
    // boxes must have their items by then. Returns the names of those that have no value to bind.
    [[nodiscard]] QStringList bind(QWidget* root);

    // Whether an edit is stored at once, as at first, or held until save().
    [[nodiscard]] bool appliesImmediately() const { return _appliesImmediately; }
    // Setting it stores what was held.
    void setAppliesImmediately(bool appliesImmediately);

    [[nodiscard]] bool hasUnappliedChanges() const { return !_edits.isEmpty(); }

    // Stores the edits that are held.
    void save();

    // Drops them: the controls show what is stored.
    void revert();

private:
    QVariant _storedValue(const QString& key, const QWidget* control) const;
    void _edit(const QString& key, const QWidget* control, const QVariant& value);
    void _show(const QString& key);

    UserDefaults& _defaults;
    std::map<QString, std::vector<QWidget*>> _controls; // by key
    QVariantMap _edits; // held, by key
    bool _appliesImmediately = true;
    bool _isShowing = false; // controls change because we set them
};
