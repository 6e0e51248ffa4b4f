// A main loop for programs without a window system: timed blocks and one watched descriptor, served
// by the thread that runs it. Blocks of equal time run in the order of their submission.
#pragma once

#include "system/FileDescriptor.h"

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <optional>

class RunLoop
{
public:
    using Block = std::function<void()>;

    // Throws std::system_error when no descriptor is left.
    RunLoop();

    // Any thread. As MainQueue::dispatchAfter().
    void submitAfter(std::chrono::nanoseconds delay, Block block);

    // Calls the block whenever the descriptor, which is borrowed, can be read.
    void watch(int descriptor, Block onReadable);

    // Serves blocks and the descriptor until the predicate, asked after every turn, holds.
    void runUntil(const std::function<bool()>& done);

private:
    using Clock = std::chrono::steady_clock;

    // What is due now, taken off the schedule.
    std::optional<Block> _nextDue();
    void _wait();

    FileDescriptor _wake; // an eventfd: a block was submitted
    int _watched = -1;
    Block _onReadable;

    std::mutex _mutex; // protects _blocks
    std::multimap<Clock::time_point, Block> _blocks;
};
