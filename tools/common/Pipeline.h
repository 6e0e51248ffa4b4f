// A reader, the calling thread, fills blocks; many workers work on a block each; and one writer
// gets them in the order in which they were read.
//
// Blocks and threads are made as they are needed, up to a fixed number, which bounds memory. A
// block that stays alone never leaves the calling thread: starting others would take longer than
// what most dropped files cost. Nor do blocks for which there are no threads to be had.
//
// Blocks go round a ring of slots that is there from the beginning: nothing is allocated in order
// to fail, so that a run without memory ends, too. The first failure, whose ever it is, stops all,
// and is what run() throws after every thread has ended.
#pragma once

#include "tools/common/Interrupt.h"

#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

template <class Block> class Pipeline
{
public:
    explicit Pipeline(unsigned threadCount)
        : _mostWorkers(threadCount)
        // Two for each worker, so that none waits for the reader, and one for the reader and the
        // writer each.
        , _blocksLeft(2 * threadCount + 2)
        , _slots(_blocksLeft)
    {
        _empty.reserve(_blocksLeft);
    }

    // What the reader gets its blocks from.
    class Feed
    {
    public:
        // Waits for a block that is free, and empty. Throws when the run has been stopped.
        std::unique_ptr<Block> take() { return _pipeline._takeEmpty(); }

        // Hands a filled block on.
        void submit(std::unique_ptr<Block> block)
        {
            _pipeline._put(std::move(block));
            if (!std::exchange(_mayBeAlone, false))
                _goOn();
        }

    private:
        friend class Pipeline;
        Feed(Pipeline& pipeline, std::function<void()> goOn)
            : _pipeline(pipeline)
            , _goOn(std::move(goOn))
        {
        }

        Pipeline& _pipeline;
        std::function<void()> _goOn; // with what has been put into the slots
        bool _mayBeAlone = true; // the next block
    };

    // read(Feed&) on the calling thread; makeWork() for each worker, giving what is called as
    // work(Block&) on its thread; write(Block&) on one thread.
    template <class Read, class MakeWork, class Write>
    void run(const Read& read, const MakeWork& makeWork, const Write& write)
    {
        {
            Crew<MakeWork, Write> crew(*this, makeWork, write);
            Feed feed(*this, [&] {
                crew.grow();
                crew.doTheRest();
            });
            try {
                read(feed);
                crew.doTheRest();
                _finish();
            } catch (...) { // or another has failed
                _stop(std::current_exception());
            }
        }
        if (_failure)
            std::rethrow_exception(_failure);
    }

private:
    struct Slot {
        std::unique_ptr<Block> block;
        bool isDone = false;
    };
    enum class Waiting { no, yes };
    class Stopped : public std::exception
    {
    };

    // The writer's thread and the workers'.
    template <class MakeWork, class Write> class Crew
    {
    public:
        Crew(Pipeline& pipeline, const MakeWork& makeWork, const Write& write)
            : _pipeline(pipeline)
            , _makeWork(makeWork)
            , _write(write)
        {
        }

        // By a worker, if there may be more. When the system gives no more, those there are will
        // do.
        void grow()
        try {
            if (_threads.empty())
                _threads.emplace_back([&] { _pipeline._writeAll(_write, Waiting::yes); });
            if (_threads.size() > _pipeline._mostWorkers)
                return;
            _threads.emplace_back([&pipeline = _pipeline, work = _newWork()] {
                pipeline._workAll(*work, Waiting::yes);
            });
        } catch (const std::exception&) {
        }

        // On the calling thread, what there is no other for.
        void doTheRest()
        {
            if (_threads.size() < 2) {
                if (!_ownWork)
                    _ownWork = _newWork();
                _pipeline._workAll(*_ownWork, Waiting::no);
            }
            if (_threads.empty())
                _pipeline._writeAll(_write, Waiting::no);
        }

    private:
        using Work = std::invoke_result_t<MakeWork>;
        std::unique_ptr<Work> _newWork() const
        {
            return std::unique_ptr<Work>(new Work(_makeWork())); // that need not be movable
        }

        Pipeline& _pipeline;
        const MakeWork& _makeWork;
        const Write& _write;
        std::unique_ptr<Work> _ownWork;
        std::vector<std::jthread> _threads; // the first is the writer's
    };

    std::unique_ptr<Block> _takeEmpty()
    {
        Interrupt::check();
        std::unique_lock lock(_mutex);
        if (_empty.empty() && _blocksLeft > 0) {
            --_blocksLeft;
            return std::make_unique<Block>();
        }
        _emptied.wait(lock, [&] { return _isStopped || !_empty.empty(); });
        if (_isStopped)
            throw Stopped();
        std::unique_ptr<Block> block = std::move(_empty.back());
        _empty.pop_back();
        block->clear();
        return block;
    }

    void _put(std::unique_ptr<Block> block)
    {
        const std::lock_guard lock(_mutex);
        if (_isStopped)
            throw Stopped();
        _slot(_readCount++).block = std::move(block);
        _filled.notify_one();
    }

    void _finish()
    {
        const std::lock_guard lock(_mutex);
        _isFinished = true;
        _filled.notify_all();
        _done.notify_all();
    }

    void _stop(const std::exception_ptr& failure)
    {
        const std::lock_guard lock(_mutex);
        if (!std::exchange(_isStopped, true))
            _failure = failure;
        for (std::condition_variable* const waitedFor : {&_filled, &_done, &_emptied})
            waitedFor->notify_all();
    }

    template <class Work> void _workAll(Work& work, Waiting waiting)
    try {
        while (Slot* const slot = _nextFilled(waiting)) {
            work(*slot->block);
            const std::lock_guard lock(_mutex);
            slot->isDone = true;
            _done.notify_one();
        }
    } catch (...) {
        _stop(std::current_exception());
    }

    // What is to be worked on next.
    Slot* _nextFilled(Waiting waiting)
    {
        std::unique_lock lock(_mutex);
        const auto isThere = [&] { return _begunCount < _readCount; };
        if (waiting == Waiting::yes)
            _filled.wait(lock, [&] { return _isStopped || _isFinished || isThere(); });
        return !_isStopped && isThere() ? &_slot(_begunCount++) : nullptr;
    }

    template <class Write> void _writeAll(const Write& write, Waiting waiting)
    try {
        while (Slot* const slot = _nextDone(waiting)) {
            Interrupt::check();
            write(*slot->block);
            const std::lock_guard lock(_mutex);
            _empty.push_back(std::move(slot->block));
            slot->isDone = false;
            ++_writtenCount;
            _emptied.notify_one();
        }
    } catch (...) {
        _stop(std::current_exception());
    }

    // What is to be written next.
    Slot* _nextDone(Waiting waiting)
    {
        std::unique_lock lock(_mutex);
        const auto isThere = [&] { return _slot(_writtenCount).isDone; };
        const auto isAll = [&] { return _isFinished && _writtenCount == _readCount; };
        if (waiting == Waiting::yes)
            _done.wait(lock, [&] { return _isStopped || isThere() || isAll(); });
        return !_isStopped && isThere() ? &_slot(_writtenCount) : nullptr;
    }

    // There is one for every block, so each is free when it is its turn.
    Slot& _slot(std::size_t count) { return _slots[count % _slots.size()]; }

    const unsigned _mostWorkers;
    unsigned _blocksLeft; // how many more there may be; the reader's

    std::mutex _mutex; // protects what follows, but for the blocks in the slots
    std::condition_variable _filled, _done, _emptied;
    std::vector<Slot> _slots;
    std::size_t _readCount = 0; // of blocks: how many have been put into slots,
    std::size_t _begunCount = 0; // are or have been worked on,
    std::size_t _writtenCount = 0; // and have been written
    std::vector<std::unique_ptr<Block>> _empty;
    bool _isFinished = false; // everything has been read
    bool _isStopped = false; // by a failure:
    std::exception_ptr _failure;
};
