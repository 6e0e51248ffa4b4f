// Blocks on the main thread: the run loop, and the way to it from any thread.

#include "platform/base/seams/MainQueue.h"

#include "app/commandline/RunLoop.h"

#include <string>
#include <thread>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(MainQueue, blocksOfAWorkerRunOnTheMainThreadOnceAndNotBeforeTheirTime)
{
    RunLoop loop;
    MainQueue::setSubmitter([&](std::chrono::nanoseconds delay, MainQueue::Block block) {
        loop.submitAfter(delay, std::move(block));
    });
    const auto start = std::chrono::steady_clock::now();
    std::string order;
    const auto later = [&, main = std::this_thread::get_id()](char letter, auto delay) {
        MainQueue::dispatchAfter(delay, [=, &order] {
            EXPECT_EQ(std::this_thread::get_id(), main);
            EXPECT_GE(std::chrono::steady_clock::now() - start, delay);
            order += letter;
        });
    };
    std::jthread worker([&] {
        later('d', 50ms);
        later('c', 20ms);
        later('a', 0ms);
        later('b', -7s);
        MainQueue::dispatchAfter(std::chrono::nanoseconds::max(), [] { ADD_FAILURE(); });
    });
    loop.runUntil([&] { return order.size() == 4; }); // also wakes for blocks that come meanwhile
    EXPECT_EQ(order, "abcd");
    MainQueue::setSubmitter({});
    MainQueue::dispatchAfter(0ns, [] { ADD_FAILURE() << "nobody takes it"; });
}
