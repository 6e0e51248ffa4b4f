#include "platform/desktop/panels/ElidedLabel.h"

#include <QStylePainter>

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    const QRect place = contentsRect();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, place.width());
    setToolTip(shown == text() ? QString() : text());
    QStylePainter painter(this);
    painter.drawItemText(place, int(alignment()), palette(), isEnabled(), shown, foregroundRole());
}
