#pragma once

#include <QString>

class QAbstractButton;

namespace ButtonDefaultsAdditions
{

// Checks the button when the standard user defaults' boolean for the key is true, else unchecks it.
void takeStateFromKey(QAbstractButton& button, const QString& key);

} // namespace ButtonDefaultsAdditions
