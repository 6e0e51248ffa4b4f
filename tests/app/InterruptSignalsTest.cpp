#include "platform/base/process/InterruptSignals.h"

#include "tests/support/Run.h"

#include <gtest/gtest.h>

TEST(InterruptSignals, areNotedAndNotInherited)
{
    InterruptSignals signals;
    EXPECT_FALSE(signals.take());
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        ::raise(number);
        EXPECT_TRUE(signals.take()) << number;
        EXPECT_FALSE(signals.take()) << number;
    }
    const auto child = support::run({"grep", "-E", "SigBlk|SigIgn", "/proc/self/status"});
    EXPECT_EQ(child.out.find_first_of("123456789abcdef", child.out.find(':')), child.out.npos)
        << child.out;
}
