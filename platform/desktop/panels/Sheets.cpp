#include "platform/desktop/panels/Sheets.h"

#include <QDialog>
#include <QEvent>
#include <QPointer>
#include <QPushButton>
#include <QWindow>

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

// The desktop gives the keyboard to the sheet when it comes, and to what is below when it goes. As
// transients of one window, two sheets confuse Qt 6.4 on X11: the window itself may get it.
class StackAbove : public QObject
{
public:
    StackAbove(QDialog* sheet, QDialog* below)
        : _below(below)
    {
        sheet->installEventFilter(this);
    }

protected:
    // Qt has made the sheet's window by then, and shows it afterwards.
    bool eventFilter(QObject* sheet, QEvent* event) override
    {
        if (event->type() == QEvent::Show && _below)
            static_cast<QDialog*>(sheet)->windowHandle()->setTransientParent(
                _below->windowHandle());
        return false;
    }

private:
    QPointer<QDialog> _below;
};

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
    const StackAbove above(sheet, onWindow != nullptr ? attachedSheet(onWindow) : nullptr);
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
