// Which program the user has chosen for a type of file or address. Main thread.
#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace DefaultApplication
{

// Calls `then` later and once with the program's desktop id ("org.example.Mail.desktop"), as
// `xdg-mime query default` gives it; with an empty one when there is none or the answer takes too
// long. Nothing is called once the context is gone.
void query(const QString& type, QObject* context, std::function<void(const QString& id)> then);

} // namespace DefaultApplication
