#include "platform/desktop/panels/Sheets.h"

#include <QDialog>
#include <QEvent>
#include <QPointer>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace
{

void attach(QDialog* sheet, QWidget* onWindow, Qt::WindowModality modality = Qt::WindowModal)
{
    const Qt::WindowFlags flags = Qt::Sheet | Qt::WindowTitleHint | Qt::WindowCloseButtonHint;
    if (sheet->parentWidget() != onWindow || sheet->windowType() != Qt::Sheet)
        sheet->setParent(onWindow, flags);
    sheet->setWindowModality(modality);
    // The framed button is the one that Return presses, wherever the keyboard focus is.
    for (QPushButton* button : sheet->findChildren<QPushButton*>())
        button->setAutoDefault(false);
    if (sheet->windowTitle().isEmpty() && onWindow)
        sheet->setWindowTitle(onWindow->windowTitle()); // screen readers begin with it
}

// Waits for a sheet to go, and looks again: another may have come.
class SheetWatch : public QObject
{
public:
    SheetWatch(QWidget* window, QObject* context, std::function<void()> block)
        : QObject(context)
        , _window(window)
        , _block(std::move(block))
    {
        _look();
    }

protected:
    bool eventFilter(QObject* sheet, QEvent* event) override
    {
        if (event->type() == QEvent::Hide) {
            sheet->removeEventFilter(this);
            QMetaObject::invokeMethod(
                this, [this] { _look(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    void _look()
    {
        QDialog* sheet = _window ? Sheets::attachedSheet(_window) : nullptr;
        if (sheet != nullptr) {
            sheet->installEventFilter(this);
            return;
        }
        deleteLater();
        if (_window)
            _block();
    }

    QPointer<QWidget> _window;
    std::function<void()> _block;
};

} // namespace

void Sheets::whenNoneIsUp(QWidget* onWindow, QObject* context, std::function<void()> block)
{
    new SheetWatch(onWindow, context, std::move(block)); // deletes itself
}

void Sheets::begin(QDialog* sheet, QWidget* onWindow)
{
    attach(sheet, onWindow);
    sheet->open();
}

// Qt keeps every other kind of sheet's window from being closed, and tells nobody.
void Sheets::beginOverOpenWindow(QDialog* sheet, QWidget* onWindow)
{
    attach(sheet, onWindow, Qt::NonModal);
    sheet->show();
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
        return dialog->isVisible() && dialog->windowType() == Qt::Sheet;
    };
    // From the newest: a question can stand over a sheet.
    const auto found = std::find_if(dialogs.rbegin(), dialogs.rend(), isUp);
    return found == dialogs.rend() ? nullptr : *found;
}
