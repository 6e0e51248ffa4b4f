// What looks like the desktop's combo box, painted so that a text that does not fit loses its
// middle: the end of a path tells most.
#pragma once

#include <QString>
#include <QStyleOptionComboBox>

class QWidget;

namespace ComboBoxText
{

// Returns the text as it is shown.
QString paint(QWidget* widget, QStyleOptionComboBox option);

} // namespace ComboBoxText
