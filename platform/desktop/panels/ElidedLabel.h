// One line of plain text that is never wider than its place: what does not fit loses its middle,
// and the whole is the tooltip, and what a screen reader reads. It asks for no width of its own,
// and for its height also without a text, so that nothing moves when the text changes.
#pragma once

#include <QLabel>

class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override { return {0, fontMetrics().height()}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
};
