#include "app/window/TransparentTextView.h"

TransparentTextView::TransparentTextView(QWidget* parent)
    : QTextBrowser(parent)
{
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    setTextInteractionFlags(Qt::NoTextInteraction);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    viewport()->setCursor(Qt::ArrowCursor);
}
