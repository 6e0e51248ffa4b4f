// Blocks on the main thread: the run loop, and the way to it from any thread.

#include "platform/base/seams/MainQueue.h"

#include "app/commandline/RunLoop.h"
#include "tests/support/Test.h"

TEST(MainQueue, blocksOfAWorkerRunOnTheMainThreadOnceAndNotBeforeTheirTime)
{
    RunLoop loop;
    MainQueue::setSubmitter([&](auto delay, auto block) { loop.submitAfter(delay, block); });
    const auto due = std::chrono::steady_clock::now() + 20ms;
    std::string order;
    const std::jthread worker([&, main = std::this_thread::get_id()] {
        MainQueue::dispatchAfter(20ms, [&, main] {
            EXPECT_EQ(std::this_thread::get_id(), main);
            EXPECT_GE(std::chrono::steady_clock::now(), due);
            order += 'c';
        });
        MainQueue::dispatchAfter(0ms, [&] { order += 'a'; });
        MainQueue::dispatchAfter(-7s, [&] { order += 'b'; });
        MainQueue::dispatchAfter(std::chrono::nanoseconds::max(), [&] { order += '-'; });
    });
    loop.runUntil([&] { return order.size() == 3; }); // also wakes for blocks that come meanwhile
    EXPECT_EQ(order, "abc");
    MainQueue::setSubmitter({});
}
