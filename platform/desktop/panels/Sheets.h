// Sheets: dialogs that belong to one window and keep it from input while they are up.
#pragma once

#include <functional>

class QDialog;
class QObject;
class QWidget;

namespace Sheets
{

// Shows the dialog as a sheet on the window, or without one as a window of its own, and returns at
// once. The sheet becomes the window's child, but stays the caller's to delete.
void begin(QDialog* sheet, QWidget* onWindow);

// The same, but the window can still be closed and its menus used: what must rest while the sheet
// is up, the caller disables.
void beginOverOpenWindow(QDialog* sheet, QWidget* onWindow);

// As begin(), then serves events until the sheet is done; the result is what done() was given, 0
// when the sheet was dismissed with Escape or the program ends.
int runModal(QDialog* sheet, QWidget* onWindow);

// The sheet that is up on the window, the foremost one; nothing when there is none.
[[nodiscard]] QDialog* attachedSheet(const QWidget* window);

// Calls the block once the sheet that is up has gone and no other is there; not without the
// context.
void whenNoneIsUp(QWidget* onWindow, QObject* context, std::function<void()> block);

} // namespace Sheets
