#include "shared/Library/Extras/ViewSize.h"

#include <QWidget>

#include <cmath>

void ViewSize::setFrameWidth(QWidget& view, float width)
{
    view.resize(static_cast<int>(std::lround(width)), view.height());
}
