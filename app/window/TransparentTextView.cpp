#include "app/window/TransparentTextView.h"

#include "platform/desktop/panels/WrappedText.h"

#include <algorithm>

namespace
{

constexpr int widestInCharacters = 72;

} // namespace

TransparentTextView::TransparentTextView(QWidget* parent)
    : QTextBrowser(parent)
{
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    setTextInteractionFlags(Qt::NoTextInteraction);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    viewport()->setCursor(Qt::ArrowCursor);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    document()->setDocumentMargin(0);
    document()->setDefaultStyleSheet(QStringLiteral("p { margin: 0 }"));
    QSizePolicy heightFollows(QSizePolicy::Expanding, QSizePolicy::Fixed);
    heightFollows.setHeightForWidth(true);
    setSizePolicy(heightFollows);
}

QSize TransparentTextView::sizeHint() const
{
    const int width = std::min(
        WrappedText::widthOf(*document()), fontMetrics().averageCharWidth() * widestInCharacters);
    return {width, heightForWidth(width)};
}

int TransparentTextView::heightForWidth(int width) const
{
    return WrappedText::heightOf(*document(), width);
}
