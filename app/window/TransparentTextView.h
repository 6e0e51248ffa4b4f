// Text that stands on the window's own background and can be neither edited, selected nor dragged.
#pragma once

#include <QTextBrowser>

class TransparentTextView : public QTextBrowser
{
    Q_OBJECT

public:
    explicit TransparentTextView(QWidget* parent = nullptr);
};
