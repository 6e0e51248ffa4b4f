#pragma once

#include <functional>

// Class-level helpers; there are no instances.
class QKUtility
{
public:
    QKUtility() = delete;

    // Runs the block once on the main thread, no sooner than the delay (in seconds; zero or less:
    // the next turn of the main queue). Any thread; returns at once.
    static void afterDelay(double seconds, std::function<void()> runBlock);
};
