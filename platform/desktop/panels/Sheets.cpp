#include "platform/desktop/panels/Sheets.h"

#include <QDialog>

#include <algorithm>

namespace
{

void attach(QDialog* sheet, QWidget* onWindow)
{
    const Qt::WindowFlags flags = Qt::Sheet | Qt::WindowTitleHint | Qt::WindowCloseButtonHint;
    if (sheet->parentWidget() != onWindow || sheet->windowType() != Qt::Sheet)
        sheet->setParent(onWindow, flags);
    sheet->setWindowModality(Qt::WindowModal);
    if (sheet->windowTitle().isEmpty() && onWindow)
        sheet->setWindowTitle(onWindow->windowTitle()); // screen readers begin with it
}

} // namespace

void Sheets::begin(QDialog* sheet, QWidget* onWindow)
{
    attach(sheet, onWindow);
    sheet->open();
}

int Sheets::runModal(QDialog* sheet, QWidget* onWindow)
{
    attach(sheet, onWindow);
    return sheet->exec();
}

QDialog* Sheets::attachedSheet(const QWidget* window)
{
    const auto dialogs = window->findChildren<QDialog*>(QString(), Qt::FindDirectChildrenOnly);
    const auto isUp = [](const QDialog* dialog) {
        return dialog->isVisible() && dialog->windowModality() == Qt::WindowModal;
    };
    const auto found = std::ranges::find_if(dialogs, isUp);
    return found == dialogs.end() ? nullptr : *found;
}
