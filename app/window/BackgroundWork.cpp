#include "app/window/BackgroundWork.h"

#include "platform/base/seams/MainQueue.h"

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>

using namespace std::chrono_literals;

namespace
{

constexpr auto interruptInterval = 50ms; // an interrupt may fall between two tools: it is repeated

// A block on the main thread that somebody waits for.
struct Errand {
    std::mutex mutex; // protects isDone
    std::condition_variable_any changed;
    bool isDone = false;
};

} // namespace

BackgroundWork::~BackgroundWork()
{
    end({});
}

void BackgroundWork::detachNewThread(std::function<void()> block)
{
    _forgetEnded();
    const auto hasEnded = std::make_shared<std::atomic<bool>>(false);
    _workers.push_back({std::jthread([hasEnded, work = std::move(block)] {
                            work();
                            *hasEnded = true;
                        }),
        hasEnded});
}

void BackgroundWork::_forgetEnded()
{
    std::erase_if(_workers, [](const Worker& worker) { return worker.hasEnded->load(); });
}

bool BackgroundWork::isRunning() const
{
    return std::ranges::any_of(_workers, [](const Worker& worker) { return !*worker.hasEnded; });
}

void BackgroundWork::end(const std::function<void()>& interrupter)
{
    _ending.request_stop();
    while (interrupter && isRunning()) {
        interrupter();
        std::this_thread::sleep_for(interruptInterval);
    }
    _workers.clear();
}

void BackgroundWork::sleepFor(std::chrono::duration<double> time) const
{
    std::mutex mutex;
    std::condition_variable_any never;
    std::unique_lock lock(mutex);
    never.wait_for(lock, _ending.get_token(), time, [] { return false; });
}

void BackgroundWork::performOnMainThread(std::function<void()> block) const
{
    MainQueue::dispatchAfter(0ns, [ending = _ending.get_token(), task = std::move(block)] {
        if (!ending.stop_requested())
            task();
    });
}

void BackgroundWork::performOnMainThreadAndWait(std::function<void()> block) const
{
    const auto errand = std::make_shared<Errand>();
    performOnMainThread([errand, task = std::move(block)] {
        task();
        const std::lock_guard lock(errand->mutex);
        errand->isDone = true;
        errand->changed.notify_all();
    });
    std::unique_lock lock(errand->mutex);
    errand->changed.wait(lock, _ending.get_token(), [&] { return errand->isDone; });
}
