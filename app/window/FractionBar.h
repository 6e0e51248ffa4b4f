// A progress bar that moves between its steps, where it is known how far it is: it counts as every
// other does, but is drawn by the fraction. It never goes back.
#pragma once

#include <QProgressBar>

#include <optional>

class FractionBar : public QProgressBar
{
public:
    using QProgressBar::QProgressBar;

    // At its beginning.
    void restart();
    void setFraction(double fraction);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::optional<double> _fraction;
    double _drawn = 0;
};
