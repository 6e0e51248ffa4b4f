#pragma once

class QWidget;

namespace ViewSize
{

// Changes the width of the widget's frame, in its parent's points, and nothing else.
void setFrameWidth(QWidget& view, float width);

} // namespace ViewSize
