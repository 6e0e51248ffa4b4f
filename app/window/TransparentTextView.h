// Text that stands on the window's own background and can be neither edited, selected nor dragged.
// It breaks its lines at a width that people read with ease, or where it has to be narrower, and is
// as high as they need.
#pragma once

#include <QTextBrowser>

class TransparentTextView : public QTextBrowser
{
    Q_OBJECT

public:
    explicit TransparentTextView(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
    [[nodiscard]] int heightForWidth(int width) const override;
};
