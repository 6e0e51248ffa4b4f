// A queue between threads. After close() nothing can be put in any more and what is in it is
// dropped: closing is the one signal to stop. finish() lets what is in it be taken first.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

template <class Value> class BlockingQueue
{
public:
    // False when the queue is closed or finished.
    bool push(Value value)
    {
        const std::lock_guard lock(_mutex);
        if (_isFinished)
            return false;
        _values.push_back(std::move(value));
        _changed.notify_one();
        return true;
    }

    // Waits for a value; none when the queue is closed, or finished and empty.
    std::optional<Value> pop()
    {
        std::unique_lock lock(_mutex);
        _changed.wait(lock, [&] { return _isFinished || !_values.empty(); });
        return _takeFirst();
    }

    // The same without waiting: none also when there is none yet.
    std::optional<Value> tryPop()
    {
        const std::lock_guard lock(_mutex);
        return _takeFirst();
    }

    void finish()
    {
        const std::lock_guard lock(_mutex);
        _isFinished = true;
        _changed.notify_all();
    }

    void close()
    {
        const std::lock_guard lock(_mutex);
        _isFinished = true;
        _values.clear();
        _changed.notify_all();
    }

private:
    std::optional<Value> _takeFirst()
    {
        if (_values.empty())
            return std::nullopt;
        std::optional<Value> value(std::move(_values.front()));
        _values.pop_front();
        return value;
    }

    std::mutex _mutex; // protects what follows
    std::condition_variable _changed;
    std::deque<Value> _values;
    bool _isFinished = false;
};
