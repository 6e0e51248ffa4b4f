#include "shared/Library/Extras/PopUpButtonExtras.h"

void PopUpButtonExtras::addItemWithTitle(PopUpButton& popUp, const QString& title, std::int32_t tag)
{
    addItemWithTitle(popUp, title, nullptr, {}, tag);
}

void PopUpButtonExtras::addItemWithTitle(PopUpButton& popUp, const QString& title, QObject* target,
    const QByteArray& action, std::int32_t tag)
{
    popUp.addItemWithTitle(title);
    popUp.setItemAtIndex(popUp.numberOfItems() - 1,
        {.title = title, .tag = tag, .target = target, .action = action});
}

void PopUpButtonExtras::addItemWithTitle(
    PopUpButton& popUp, const QString& title, QObject* target, const QByteArray& action)
{
    addItemWithTitle(popUp, title, target, action, 0);
}
