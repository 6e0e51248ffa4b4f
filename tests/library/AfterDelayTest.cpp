#include "platform/base/seams/MainQueue.h"
#include "shared/Library/Extras/QKUtility.h"

#include <limits>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(QKUtility, delaysBecomeWholeNanosecondsOf64Bits)
{
    using std::chrono::nanoseconds;
    nanoseconds given{};
    MainQueue::setSubmitter([&](nanoseconds delay, const MainQueue::Block&) { given = delay; });
    const std::pair<double, nanoseconds> cases[]
        = {{1e-10, 0ns}, {1.9e-9, 1ns}, {0.2, 200ms}, {-1.9e-9, -1ns}, {1e300, nanoseconds::max()},
            {std::numeric_limits<double>::quiet_NaN(), 0ns}};
    for (const auto& [seconds, delay] : cases) {
        QKUtility::afterDelay(seconds, [] {});
        EXPECT_EQ(given, delay) << seconds;
    }
    MainQueue::setSubmitter({});
}
