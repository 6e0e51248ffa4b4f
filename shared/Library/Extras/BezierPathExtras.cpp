#include "shared/Library/Extras/BezierPathExtras.h"

#include <algorithm>

namespace
{

constexpr double extraInset = 0.5; // wanted: it sharpens the sides of an outline

// Angles in degrees, growing in the sense in which x turns to y. Qt's grow in the other.
void appendArc(QPainterPath& path, QPointF centre, double radius, double startAngle)
{
    constexpr double quarter = 90;
    const QPointF corner(radius, radius);
    const QRectF circle(centre - corner, centre + corner);
    if (path.elementCount() == 0)
        path.arcMoveTo(circle, -startAngle);
    path.arcTo(circle, -startAngle, -quarter);
}

} // namespace

QPainterPath BezierPathExtras::bezierPathWithRoundRectInRect(const QRectF& rect, float radius)
{
    const float shorterHalf = static_cast<float>(0.5 * std::min(rect.width(), rect.height()));
    const float r = std::min(radius, shorterHalf);
    const double inset = r + extraInset;
    const QRectF inner = rect.adjusted(inset, inset, -inset, -inset);
    QPainterPath path;
    appendArc(path, {inner.x(), inner.y()}, r, 180);
    appendArc(path, {inner.x() + inner.width(), inner.y()}, r, 270);
    appendArc(path, {inner.x() + inner.width(), inner.y() + inner.height()}, r, 0);
    appendArc(path, {inner.x(), inner.y() + inner.height()}, r, 90);
    path.closeSubpath();
    return path;
}
