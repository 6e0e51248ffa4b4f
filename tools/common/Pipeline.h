// A reader, the calling thread, fills blocks; many workers work on a block each; and one writer
// gets them in the order in which they were read.
//
// Blocks and threads are made as they are needed, up to a fixed number, which bounds memory. A
// block that stays alone never leaves the calling thread: starting others would take longer than
// what most dropped files cost. Errors travel with the blocks: the first in their order is what
// run() throws, after every thread has stopped.
#pragma once

#include "tools/common/BlockingQueue.h"
#include "tools/common/Interrupt.h"

#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <system_error>
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
    {
    }

    // What the reader gets its blocks from.
    class Feed
    {
    public:
        // Waits for a block that is free, and empty. Throws when the run has been stopped.
        std::unique_ptr<Block> take()
        {
            Interrupt::check();
            std::optional<std::unique_ptr<Block>> block = _pipeline._empty.tryPop();
            if (!block && _pipeline._blocksLeft > 0) {
                --_pipeline._blocksLeft;
                return std::make_unique<Block>();
            }
            if (!block)
                block = _pipeline._empty.pop();
            if (!block)
                throw Stopped();
            (*block)->clear();
            return std::move(*block);
        }

        // Hands a filled block on.
        void submit(std::unique_ptr<Block> block)
        {
            if (_pipeline._isAlone && !_pipeline._first) {
                _pipeline._first = std::move(block);
                return;
            }
            if (_pipeline._isAlone) {
                _startWriter();
                _pipeline._isAlone = false;
                _handOn(std::move(_pipeline._first));
            }
            _handOn(std::move(block));
        }

    private:
        friend class Pipeline;
        using Starter = std::function<void()>;
        Feed(Pipeline& pipeline, Starter startWriter, Starter startWorker)
            : _pipeline(pipeline)
            , _startWriter(std::move(startWriter))
            , _startWorker(std::move(startWorker))
        {
        }
        void _handOn(std::unique_ptr<Block> block)
        {
            _addWorker();
            Job job{std::move(block), {}};
            if (!_pipeline._results.push(job.done.get_future()))
                throw Stopped();
            _pipeline._jobs.push(std::move(job));
        }
        void _addWorker()
        {
            if (_workerCount == _pipeline._mostWorkers)
                return;
            try {
                _startWorker();
                ++_workerCount;
            } catch (const std::system_error&) {
                if (_workerCount == 0)
                    throw;
                // The system gives no more: those there are will do.
            }
        }

        Pipeline& _pipeline;
        Starter _startWriter;
        Starter _startWorker;
        unsigned _workerCount = 0;
    };

    // read(Feed&) on the calling thread; makeWork() on each worker's, giving what is called as
    // work(Block&); write(Block&) on one thread.
    template <class Read, class MakeWork, class Write>
    void run(const Read& read, const MakeWork& makeWork, const Write& write)
    {
        std::exception_ptr failure;
        {
            std::vector<std::jthread> threads;
            Feed feed(
                *this, [&] { threads.emplace_back([&] { failure = _writeAll(write); }); },
                [&] { threads.emplace_back([&] { _workAll(makeWork); }); });
            const std::exception_ptr readFailure = _readAll(read, feed);
            if (_isAlone)
                failure = _finishAlone(makeWork, write, readFailure);
        }
        if (failure)
            std::rethrow_exception(failure);
    }

private:
    using Done = std::promise<std::unique_ptr<Block>>;
    struct Job {
        std::unique_ptr<Block> block;
        Done done;
    };
    class Stopped : public std::exception
    {
    };

    // What kept it from reading all. It is handed on as the last result, too.
    template <class Read> std::exception_ptr _readAll(const Read& read, Feed& feed)
    {
        std::exception_ptr failure;
        try {
            read(feed);
        } catch (const Stopped&) { // the writer has failed
        } catch (...) {
            failure = std::current_exception();
            Done failed;
            failed.set_exception(failure);
            _results.push(failed.get_future());
        }
        _jobs.finish();
        _results.finish();
        return failure;
    }

    template <class MakeWork, class Write>
    std::exception_ptr _finishAlone(
        const MakeWork& makeWork, const Write& write, const std::exception_ptr& readFailure)
    {
        try {
            if (_first) {
                makeWork()(*_first);
                Interrupt::check();
                write(*_first);
            }
        } catch (...) {
            return std::current_exception();
        }
        return readFailure;
    }

    template <class Write> std::exception_ptr _writeAll(const Write& write)
    {
        std::exception_ptr failure;
        try {
            while (auto result = _results.pop()) {
                std::unique_ptr<Block> block = result->get(); // rethrows what the others threw
                Interrupt::check();
                write(*block);
                _empty.push(std::move(block));
            }
        } catch (...) {
            failure = std::current_exception();
        }
        _empty.close();
        _jobs.close();
        _results.close();
        return failure;
    }

    template <class MakeWork> void _workAll(const MakeWork& makeWork)
    {
        try {
            auto work = makeWork();
            while (std::optional<Job> job = _jobs.pop())
                _workOn(*job, work);
        } catch (...) { // makeWork found no memory: whatever this worker would have done fails
            while (std::optional<Job> job = _jobs.pop())
                job->done.set_exception(std::current_exception());
        }
    }

    template <class Work> static void _workOn(Job& job, Work& work)
    {
        try {
            work(*job.block);
            job.done.set_value(std::move(job.block));
        } catch (...) {
            job.done.set_exception(std::current_exception());
        }
    }

    // The reader's.
    const unsigned _mostWorkers;
    unsigned _blocksLeft; // how many more there may be
    bool _isAlone = true; // the first block, or none yet
    std::unique_ptr<Block> _first;
    BlockingQueue<std::unique_ptr<Block>> _empty;
    BlockingQueue<Job> _jobs; // for whoever is free
    BlockingQueue<std::future<std::unique_ptr<Block>>> _results; // in the order of reading
};
