// A progress bar that moves between its steps, where it is known how far it is: it counts as every
// other does, but is drawn by the fraction. It never goes back.
#pragma once

#include <QProgressBar>

#include <algorithm>
#include <optional>

class FractionBar : public QProgressBar
{
public:
    explicit FractionBar(QWidget* parent = nullptr);

    // At its beginning.
    void restart();
    void setFraction(double fraction);
    [[nodiscard]] double fraction() const { return std::max(_drawn, _reached()); }
    [[nodiscard]] int tenths() const; // that are full

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] double _reached() const;

    std::optional<double> _fraction;
    double _drawn = 0;
};
