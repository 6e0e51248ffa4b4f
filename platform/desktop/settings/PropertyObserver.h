// Calls a function each time a property tells of a change, where the property is known only by
// name. Belongs to the context, and goes with it or with the observed object.
#pragma once

#include <QMetaProperty>
#include <QObject>

#include <functional>

class PropertyObserver : public QObject
{
    Q_OBJECT

public:
    // False when the property has no notification; then nothing is observed.
    static bool observe(QObject* observed, const QMetaProperty& property, QObject* context,
        std::function<void()> function);

private:
    PropertyObserver(QObject* context, std::function<void()> function);
    Q_SLOT void _changed();

    const std::function<void()> _function;
};
