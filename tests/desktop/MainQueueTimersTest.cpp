#include "platform/desktop/services/MainQueueTimers.h"

#include "platform/base/seams/MainQueue.h"

#include <QCoreApplication>
#include <QTest>

#include <thread>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(MainQueueTimers, runBlocksWhenTheyAreDueAndNotATurnLater)
{
    const MainQueueTimers timers;
    std::string ran;
    const auto start = std::chrono::steady_clock::now();
    std::chrono::nanoseconds waited{};
    MainQueue::dispatchAfter(30ms, [&] {
        waited = std::chrono::steady_clock::now() - start;
        ran += 'c';
    });
    MainQueue::dispatchAfter(std::chrono::nanoseconds::max(), [&] { ran += 'd'; });
    std::jthread([&] { MainQueue::dispatchAfter(0ns, [&] { ran += 'a'; }); }).join();
    MainQueue::dispatchAfter(-1ns, [&] { ran += 'b'; });
    EXPECT_EQ(ran, "");
    QCoreApplication::sendPostedEvents(); // no timers
    EXPECT_EQ(ran, "ab");
    EXPECT_TRUE(QTest::qWaitFor([&] { return ran == "abc"; }, 20000));
    EXPECT_GE(waited, 30ms);
}
