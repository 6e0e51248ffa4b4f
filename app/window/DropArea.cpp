#include "app/window/DropArea.h"

#include "app/window/DropView.h"

#include <QDragEnterEvent>

DropArea::DropArea(DropView& box)
    : QObject(&box)
    , _box(box)
{
}

void DropArea::add(QWidget* window)
{
    window->setAcceptDrops(true);
    window->installEventFilter(this);
}

bool DropArea::eventFilter(QObject* /*window*/, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
        if (auto* drag = static_cast<QDragEnterEvent*>(event);
            DropView::offersFiles(*drag->mimeData()))
            _box.dragEnterEvent(drag);
        else
            drag->ignore();
        return true;
    case QEvent::DragMove:
        _box.dragMoveEvent(static_cast<QDragMoveEvent*>(event));
        return true;
    case QEvent::DragLeave:
        _box.dragLeaveEvent(static_cast<QDragLeaveEvent*>(event));
        return true;
    case QEvent::Drop:
        _box.dropEvent(static_cast<QDropEvent*>(event));
        return true;
    default:
        return false;
    }
}
