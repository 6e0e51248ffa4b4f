#pragma once

#include <QPainterPath>

namespace BezierPathExtras
{

// A closed path of four arcs. The radius is at most half the shorter side; the straight sides lie
// half a point inside the rectangle. In a rectangle narrower than twice the radius and a point the
// arcs cross.
[[nodiscard]] QPainterPath bezierPathWithRoundRectInRect(const QRectF& rect, float radius);

} // namespace BezierPathExtras
