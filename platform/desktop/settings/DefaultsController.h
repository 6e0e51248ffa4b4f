// Stands between the controls of a form and the settings: holds what the user edits until it is
// saved or dropped. A control is bound by the dynamic property "defaultsKey", as the form sets it:
// check boxes and other checkable buttons to a boolean, sliders and the like to an integer. Where
// nothing is edited, a control follows what the settings tell of.
//
// Lives on the main thread. The settings must outlive it; controls may go before.
#pragma once

#include "platform/desktop/settings/UserDefaults.h"

#include <QPointer>
#include <QVariantMap>
#include <QWidget>

#include <vector>

class DefaultsController : public QObject
{
    Q_OBJECT

public:
    explicit DefaultsController(
        UserDefaults& defaults = UserDefaults::standardUserDefaults(), QObject* parent = nullptr);

    // Binds all controls with a key in this widget, which show what is stored from now on.
    void bind(QWidget* root);

    // Stores the edits, in one write.
    void save();

    // Drops them: the controls show what is stored.
    void revert();

private:
    QVariant _storedValue(const QWidget* control) const;
    void _edit(const QWidget* control);
    void _show();

    UserDefaults& _defaults;
    std::vector<QPointer<QWidget>> _controls;
    QVariantMap _edits; // by key
    bool _isShowing = false; // controls change because we set them
};
