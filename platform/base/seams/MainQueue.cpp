#include "platform/base/seams/MainQueue.h"

#include <utility>

MainQueue& MainQueue::_shared()
{
    static MainQueue queue;
    return queue;
}

void MainQueue::setSubmitter(Submitter submitter)
{
    const std::lock_guard lock(_shared()._mutex);
    _shared()._submitter = std::move(submitter);
}

void MainQueue::dispatchAfter(std::chrono::nanoseconds delay, Block block)
{
    const std::lock_guard lock(_shared()._mutex);
    if (_shared()._submitter)
        _shared()._submitter(delay, std::move(block));
}
