#include "shared/Library/ButtonDefaultsAdditions.h"

#include "platform/desktop/UserDefaults.h"

#include <QAbstractButton>

void ButtonDefaultsAdditions::takeStateFromKey(QAbstractButton& button, const QString& key)
{
    button.setChecked(UserDefaults::standardUserDefaults().boolForKey(key));
}
