#include "platform/desktop/services/MainQueueTimers.h"

#include "platform/base/seams/MainQueue.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace
{

using Clock = std::chrono::steady_clock;

// A timer counts whole milliseconds, and at most what an int holds of them: it is set again until
// the time has come.
void runAt(Clock::time_point time, MainQueue::Block block)
{
    constexpr std::chrono::milliseconds longest = 24h;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now());
    if (left <= 0ms)
        return block();
    QTimer::singleShot(std::min(left, longest), Qt::PreciseTimer, QCoreApplication::instance(),
        [time, block = std::move(block)]() mutable { runAt(time, std::move(block)); });
}

Clock::time_point timeAfter(std::chrono::nanoseconds delay)
{
    const auto now = Clock::now();
    return delay < Clock::time_point::max() - now ? now + delay : Clock::time_point::max();
}

} // namespace

MainQueueTimers::MainQueueTimers()
{
    MainQueue::setSubmitter([](std::chrono::nanoseconds delay, MainQueue::Block block) {
        // Timers belong to the thread that starts them.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [time = timeAfter(delay), block = std::move(block)]() mutable {
                runAt(time, std::move(block));
            },
            Qt::QueuedConnection);
    });
}

MainQueueTimers::~MainQueueTimers()
{
    MainQueue::setSubmitter({});
}
