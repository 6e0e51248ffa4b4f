#include "app/window/FractionBar.h"

#include <QStyleOptionProgressBar>
#include <QStylePainter>

#include <algorithm>

void FractionBar::restart()
{
    _fraction.reset();
    _drawn = 0;
    setValue(0);
}

void FractionBar::setFraction(double fraction)
{
    _fraction = fraction;
    update();
}

void FractionBar::paintEvent(QPaintEvent* /*event*/)
{
    constexpr int steps = 10000; // more than there are pixels
    const double counted = maximum() > 0 ? static_cast<double>(value()) / maximum() : 0;
    _drawn = std::clamp(_fraction.value_or(counted), _drawn, 1.0);
    QStyleOptionProgressBar option;
    initStyleOption(&option);
    option.minimum = 0;
    option.maximum = steps;
    option.progress = static_cast<int>(_drawn * steps);
    QStylePainter(this).drawControl(QStyle::CE_ProgressBar, option);
}
