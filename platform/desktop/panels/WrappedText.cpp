#include "platform/desktop/panels/WrappedText.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace
{

constexpr double highest = 400;

// Of a copy: the view fits its own document to the width that it happens to have.
double heightOf(const QTextDocument& text, int width)
{
    const std::unique_ptr<QTextDocument> copy(text.clone());
    copy->setTextWidth(width);
    return copy->size().height();
}

} // namespace

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
    const double height = heightOf(*document(), width);
    setVerticalScrollBarPolicy(height > highest ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    setFixedSize(width, static_cast<int>(std::ceil(std::min(height, highest))));
}
