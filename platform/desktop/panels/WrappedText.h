// Plain text that somebody else wrote, such as a long path: broken anywhere where no blank comes in
// time, and selected with the mouse or the keyboard. As high as it needs at its width, up to a
// limit, after which it scrolls.
#pragma once

#include <QTextEdit>

class WrappedText : public QTextEdit
{
    Q_OBJECT

public:
    WrappedText(const QString& text, int width, QWidget* parent);

    // What a text needs at a width, and without any break of ours.
    [[nodiscard]] static int heightOf(const QTextDocument& text, int width);
    [[nodiscard]] static int widthOf(const QTextDocument& text);
};
