// The number by which a control tells what it stands for: a dynamic property named "tag", as the
// interface forms set it; 0 without one.
#pragma once

#include <QObject>
#include <QVariant>

namespace Tag
{

inline constexpr const char* property = "tag";

[[nodiscard]] inline int of(const QObject* control)
{
    return control == nullptr ? 0 : control->property(property).toInt();
}

inline void set(QObject* control, int tag)
{
    control->setProperty(property, tag);
}

} // namespace Tag
