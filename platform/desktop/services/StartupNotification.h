// What a desktop on X11 expects of a program whose start, or call over the bus, it has announced:
// until then its pointer is busy. By the Startup Notification Protocol 0.1 and the Extended Window
// Manager Hints, both of freedesktop.org. Main thread.
#pragma once

class QByteArray;
class QWidget;

namespace StartupNotification
{

// The start of that id is complete: the window, which is shown, comes to the front by the time of
// what the person did. Does nothing without an id, or elsewhere than on X11.
void complete(const QWidget& window, const QByteArray& id);

} // namespace StartupNotification
