// A drag over the box, as the box sees it.
#pragma once

#include "app/window/DropView.h"

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QMimeData>

struct Drag {
    QMimeData data;
    Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;

    Drag(const char* format, const QByteArray& bytes)
    {
        data.setData(QLatin1String(format), bytes);
    }

    // Whether the box takes it, which is for copying alone.
    bool hover(DropView& box)
    {
        QDragEnterEvent enter({50, 50}, offered, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&box, &enter);
        if (!enter.isAccepted())
            return false;
        QDragMoveEvent move({60, 60}, offered, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&box, &move);
        return move.isAccepted() && move.dropAction() == Qt::CopyAction;
    }
    static void leave(DropView& box)
    {
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(&box, &leave);
    }
    void drop(DropView& box)
    {
        QDropEvent drop({60, 60}, offered, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&box, &drop);
    }
};
