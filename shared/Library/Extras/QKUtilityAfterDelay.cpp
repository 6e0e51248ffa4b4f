#include "platform/base/seams/MainQueue.h"
#include "shared/Library/Extras/QKUtility.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace
{

// Truncated toward zero; what a 64-bit count cannot hold becomes the largest it can.
std::chrono::nanoseconds nanosecondsIn(double seconds)
{
    constexpr double limit = 0x1p63;
    const double count = seconds * 1e9;
    if (std::isnan(count) || count <= -limit)
        return std::chrono::nanoseconds::zero();
    return count >= limit ? std::chrono::nanoseconds::max()
                          : std::chrono::nanoseconds(static_cast<std::int64_t>(count));
}

} // namespace

void QKUtility::afterDelay(double seconds, std::function<void()> runBlock)
{
    MainQueue::dispatchAfter(nanosecondsIn(seconds), std::move(runBlock));
}
