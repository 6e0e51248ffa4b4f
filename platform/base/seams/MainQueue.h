// The main-queue seam: blocks that run on the main thread after a delay. What runs them is the
// program's choice: it installs a submitter. Without one, blocks are dropped, as on a main thread
// that never runs its loop.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>

class MainQueue
{
public:
    using Block = std::function<void()>;
    using Submitter = std::function<void(std::chrono::nanoseconds delay, Block block)>;

    // Any thread. When it returns, the former submitter is not in use any more.
    static void setSubmitter(Submitter submitter);

    // Any thread; returns at once. The block runs once, no sooner than the delay; a delay of zero
    // or less means the next turn of the queue.
    static void dispatchAfter(std::chrono::nanoseconds delay, Block block);

private:
    static MainQueue& _shared();

    std::mutex _mutex; // protects _submitter, also while it is called
    Submitter _submitter;
};
