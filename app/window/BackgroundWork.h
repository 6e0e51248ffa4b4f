// Threads that work beside the main thread and leave the interface to it. Made, used and destroyed
// on the main thread except where a comment says otherwise.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <stop_token>
#include <thread>

class BackgroundWork
{
public:
    BackgroundWork() = default;
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;

    // As end().
    ~BackgroundWork();

    void detachNewThread(std::function<void()> block);

    [[nodiscard]] bool isRunning() const;

    // Asks all threads to stop, calls the interrupter again and again until they have, and joins
    // them. What is waiting below goes on at once; blocks for the main thread do not run any more.
    void end(const std::function<void()>& interrupter);

    // The rest is for the threads.

    // Whether the program is ending.
    [[nodiscard]] bool isEnding() const { return _ending.stop_requested(); }

    // As long as the program is not ending.
    void sleepFor(std::chrono::duration<double> time) const;

    // Has the main thread run the block, after the blocks handed over earlier.
    void performOnMainThread(std::function<void()> block) const;
    void performOnMainThreadAndWait(std::function<void()> block) const;

private:
    struct Worker {
        std::jthread thread;
        std::shared_ptr<std::atomic<bool>> hasEnded;
    };

    void _forgetEnded();

    std::stop_source _ending;
    std::list<Worker> _workers;
};
