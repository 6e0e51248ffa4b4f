// One line of text that is cut in the middle where it does not fit; the whole is its tooltip then,
// and what a screen reader reads.
#pragma once

#include <QLabel>

class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
