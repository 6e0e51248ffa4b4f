#include "platform/desktop/panels/ComboBoxText.h"

#include <QStylePainter>

QString ComboBoxText::paint(QWidget* widget, QStyleOptionComboBox option)
{
    constexpr int spaceAroundIcon = 4; // what styles leave
    const QRect field = widget->style()->subControlRect(
        QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, widget);
    const int icon = option.currentIcon.isNull() ? 0 : option.iconSize.width() + spaceAroundIcon;
    option.currentText = widget->fontMetrics().elidedText(
        option.currentText, Qt::ElideMiddle, field.width() - icon);
    QStylePainter painter(widget);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
    return option.currentText;
}
