// Starts programs of the desktop without waiting for them. Main thread.
#pragma once

#include "platform/base/process/DetachedProcess.h"

#include <QObject>

#include <chrono>
#include <functional>

namespace ProgramLauncher
{

// A program that fails does so at once as a rule; one that works may run for hours.
inline constexpr std::chrono::milliseconds quickFailure{3000};

// Calls `then` later and once: with false when the program cannot be started or ends with a status
// other than 0 while it is watched, with true when it ends well or still runs after that time.
// Nothing is called once the context is gone; the program runs on.
void launch(const DetachedProcess::Setup& setup, QObject* context,
    std::function<void(bool works)> then, std::chrono::milliseconds watched = quickFailure);

} // namespace ProgramLauncher
