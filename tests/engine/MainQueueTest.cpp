// Blocks on the main thread: the run loop, and the engine's way to it.

#include "platform/base/seams/MainQueue.h"

#include "app/commandline/RunLoop.h"
#include "shared/Library/Extras/QKUtility.h"

#include <limits>
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
            lastDelay = delay;
            loop.submitAfter(delay, std::move(block));
        });
    }
    ~MainQueueTest() override { MainQueue::setSubmitter({}); }

    RunLoop loop;
    std::chrono::nanoseconds lastDelay{};
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
        QKUtility::afterDelay(0.05, block('d', 50ms));
        QKUtility::afterDelay(0.02, block('c', 20ms));
        QKUtility::afterDelay(0, block('a', 0ms));
        QKUtility::afterDelay(-7, block('b', 0ms));
    }).join();
    EXPECT_EQ(order, "");
    loop.drain();
    EXPECT_EQ(order, "abcd");
}

TEST_F(MainQueueTest, delaysBecomeWholeNanosecondsOf64Bits)
{
    using std::chrono::nanoseconds;
    const std::pair<double, nanoseconds> cases[]
        = {{1e-10, 0ns}, {1.9e-9, 1ns}, {0.2, 200ms}, {-1.9e-9, -1ns}, {1e300, nanoseconds::max()},
            {std::numeric_limits<double>::quiet_NaN(), 0ns}};
    for (const auto& [seconds, delay] : cases) {
        QKUtility::afterDelay(seconds, [] {});
        EXPECT_EQ(lastDelay, delay) << seconds;
    }
}

TEST_F(MainQueueTest, theLoopWakesForADescriptorAndForABlockOfAnotherThread)
{
    const FileDescriptor event(eventfd(1, EFD_CLOEXEC));
    bool isRead = false;
    loop.watch(event.number(), [&] {
        std::uint64_t count = 0;
        isRead = read(event.number(), &count, sizeof count) == sizeof count;
    });
    QKUtility::afterDelay(1e300, [] { ADD_FAILURE() << "ran before its time"; });
    loop.runUntil([&] { return isRead; });

    bool isEnded = false;
    std::jthread worker([&] {
        std::this_thread::sleep_for(20ms);
        QKUtility::afterDelay(0, [&] { isEnded = true; });
    });
    loop.runUntil([&] { return isEnded; });
}
