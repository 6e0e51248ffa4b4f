// Blocks on the main thread: the run loop, and the way to it.

#include "platform/base/seams/MainQueue.h"

#include "app/commandline/RunLoop.h"

#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sys/eventfd.h>

using namespace std::chrono_literals;

namespace
{

class MainQueueTest : public testing::Test
{
protected:
    MainQueueTest()
    {
        MainQueue::setSubmitter([this](std::chrono::nanoseconds delay, MainQueue::Block block) {
            loop.submitAfter(delay, std::move(block));
        });
    }
    ~MainQueueTest() override { MainQueue::setSubmitter({}); }

    RunLoop loop;
};

} // namespace

TEST_F(MainQueueTest, blocksOfAWorkerRunHereOnceAndNotBeforeTheirTime)
{
    const auto start = std::chrono::steady_clock::now();
    std::string order;
    const auto block = [&, main = std::this_thread::get_id()](char letter, auto delay) {
        return [=, &order] {
            EXPECT_EQ(std::this_thread::get_id(), main);
            EXPECT_GE(std::chrono::steady_clock::now() - start, delay);
            order += letter;
        };
    };
    std::jthread([&] {
        MainQueue::dispatchAfter(50ms, block('d', 50ms));
        MainQueue::dispatchAfter(20ms, block('c', 20ms));
        MainQueue::dispatchAfter(0ms, block('a', 0ms));
        MainQueue::dispatchAfter(-7s, block('b', 0ms));
    }).join();
    EXPECT_EQ(order, "");
    loop.drain();
    EXPECT_EQ(order, "abcd");
}

TEST_F(MainQueueTest, theLoopWakesForADescriptorAndForABlockOfAnotherThread)
{
    const FileDescriptor event(eventfd(1, EFD_CLOEXEC));
    bool isRead = false;
    loop.watch(event.number(), [&] {
        std::uint64_t count = 0;
        isRead = read(event.number(), &count, sizeof count) == sizeof count;
    });
    MainQueue::dispatchAfter(
        std::chrono::nanoseconds::max(), [] { ADD_FAILURE() << "ran before its time"; });
    loop.runUntil([&] { return isRead; });

    bool isEnded = false;
    std::jthread worker([&] {
        std::this_thread::sleep_for(20ms);
        MainQueue::dispatchAfter(0ms, [&] { isEnded = true; });
    });
    loop.runUntil([&] { return isEnded; });
}
