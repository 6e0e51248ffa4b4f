#include "platform/desktop/panels/WrappedText.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace
{

constexpr int highest = 400;

} // namespace

// Of a copy: the view fits its own document to the width that it happens to have.
int WrappedText::heightOf(const QTextDocument& text, int width)
{
    const std::unique_ptr<QTextDocument> copy(text.clone());
    copy->setTextWidth(width);
    return static_cast<int>(std::ceil(copy->size().height()));
}

int WrappedText::widthOf(const QTextDocument& text)
{
    const std::unique_ptr<QTextDocument> copy(text.clone());
    copy->setTextWidth(-1);
    return static_cast<int>(std::ceil(copy->idealWidth()));
}

WrappedText::WrappedText(const QString& text, int width, QWidget* parent)
    : QTextEdit(parent)
{
    setReadOnly(true);
    setAccessibleName(text);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    setPlainText(text);
    const int height = heightOf(*document(), width);
    setVerticalScrollBarPolicy(height > highest ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    setFixedSize(width, std::min(height, highest));
}
