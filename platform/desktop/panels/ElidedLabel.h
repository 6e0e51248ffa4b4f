// One line of plain text that is never wider than its place: what does not fit loses its middle. It
// asks for no width of its own, and for its height also without a text, so that nothing moves when
// the text changes. Screen readers get the whole of it.
#pragma once

#include <QLabel>
#include <QPainter>
#include <QStyle>

class ElidedLabel : public QLabel
{
public:
    explicit ElidedLabel(QWidget* parent = nullptr)
        : QLabel(parent)
    {
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    }

    [[nodiscard]] QSize sizeHint() const override { return {0, fontMetrics().height()}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
        const auto alignment = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft);
        style()->drawItemText(&painter, rect(), static_cast<int>(alignment | Qt::AlignVCenter),
            palette(), isEnabled(), shown, foregroundRole());
    }
};
