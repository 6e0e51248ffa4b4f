// How much larger than usual a widget's letters are: what has a size of its own grows with them.
#pragma once

#include <QFontInfo>
#include <QWidget>

#include <algorithm>

namespace FontScale
{

constexpr int usualPixelSize = 15; // 11 points, for which the sizes are made

// Never below 1.
[[nodiscard]] inline double of(const QWidget& widget)
{
    return std::max(1.0, QFontInfo(widget.font()).pixelSize() / double{usualPixelSize});
}

} // namespace FontScale
