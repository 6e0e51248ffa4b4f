// Labels for texts that somebody else wrote: wrapped, and shown as they stand, whatever looks like
// markup in them.
#pragma once

#include <QLabel>

namespace PlainLabel
{

[[nodiscard]] inline QLabel* make(const QString& text, const QString& objectName, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setText(text);
    return label;
}

inline void setBold(QLabel* label)
{
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
}

} // namespace PlainLabel
