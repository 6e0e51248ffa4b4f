#include "shared/Library/Extras/ButtonDefaultsAdditions.h"

#include "platform/desktop/settings/UserDefaults.h"

#include <QAbstractButton>

void ButtonDefaultsAdditions::takeStateFromKey(QAbstractButton& button, const QString& key)
{
    button.setChecked(UserDefaults::standardUserDefaults().boolForKey(key));
}
