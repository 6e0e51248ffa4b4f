#include "platform/desktop/panels/ElidedLabel.h"

#include <QStyle>
#include <QStylePainter>

ElidedLabel::ElidedLabel(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    const QRect place = contentsRect();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, place.width());
    setToolTip(shown == text() ? QString() : text());
    const auto placed = QStyle::visualAlignment(layoutDirection(), alignment());
    QStylePainter painter(this);
    painter.drawItemText(
        place, static_cast<int>(placed), palette(), isEnabled(), shown, foregroundRole());
}
