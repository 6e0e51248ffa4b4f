// Appends an item and sets it up in one call. It is the last item that is set up.
#pragma once

#include "platform/desktop/panels/PopUpButton.h"

#include <cstdint>

namespace PopUpButtonExtras
{

void addItemWithTitle(PopUpButton& popUp, const QString& title, std::int32_t tag);
void addItemWithTitle(PopUpButton& popUp, const QString& title, QObject* target,
    const QByteArray& action, std::int32_t tag);
void addItemWithTitle(
    PopUpButton& popUp, const QString& title, QObject* target, const QByteArray& action);

} // namespace PopUpButtonExtras
