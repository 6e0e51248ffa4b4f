#include "app/window/FractionBar.h"

#include <QAccessibleWidget>
#include <QStyleOptionProgressBar>
#include <QStylePainter>

#include <algorithm>

namespace
{

// What a screen reader is told: as drawn, in percent.
class Percentage : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit Percentage(FractionBar* bar)
        : QAccessibleWidget(bar, QAccessible::ProgressBar)
        , _bar(*bar)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return static_cast<int>(_bar.fraction() * 100); }
    void setCurrentValue(const QVariant& /*value*/) override { }
    QVariant minimumValue() const override { return 0; }
    QVariant maximumValue() const override { return 100; }
    QVariant minimumStepSize() const override { return 1; }

private:
    const FractionBar& _bar;
};

QAccessibleInterface* make(const QString& /*className*/, QObject* object)
{
    auto* bar = dynamic_cast<FractionBar*>(object);
    return bar != nullptr ? new Percentage(bar) : nullptr;
}

} // namespace

FractionBar::FractionBar(QWidget* parent)
    : QProgressBar(parent)
{
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(make);
        return true;
    }();
}

int FractionBar::tenths() const
{
    return static_cast<int>(fraction() * 10);
}

void FractionBar::restart()
{
    _fraction.reset();
    _drawn = 0;
    setValue(0);
}

void FractionBar::setFraction(double fraction)
{
    const int before = tenths();
    _fraction = fraction;
    update();
    if (tenths() == before)
        return;
    QAccessibleValueChangeEvent event(this, tenths() * 10);
    QAccessible::updateAccessibility(&event);
}

double FractionBar::_reached() const
{
    const double counted = maximum() > 0 ? static_cast<double>(value()) / maximum() : 0;
    return std::clamp(_fraction.value_or(counted), 0.0, 1.0);
}

void FractionBar::paintEvent(QPaintEvent* /*event*/)
{
    constexpr int steps = 10000; // more than there are pixels
    _drawn = fraction();
    QStyleOptionProgressBar option;
    initStyleOption(&option);
    option.minimum = 0;
    option.maximum = steps;
    option.progress = static_cast<int>(_drawn * steps);
    QStylePainter(this).drawControl(QStyle::CE_ProgressBar, option);
}
