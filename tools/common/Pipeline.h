// One reader fills blocks, many workers work on a block each, and one writer, the calling thread,
// gets them in the order in which they were read.
//
// Blocks and workers are made as they are needed, up to a fixed number: a file dropped alone takes
// one of each, and memory is bounded. Errors travel with the
// blocks: the first in their order is what run() throws, after every thread has stopped.
#pragma once

#include "tools/common/BlockingQueue.h"
#include "tools/common/Interrupt.h"

#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

template <class Block> class Pipeline
{
public:
    explicit Pipeline(unsigned threadCount)
        : _workersLeft(threadCount)
        // Two for each worker, so that none waits for the reader, and one for the reader and the
        // writer each.
        , _blocksLeft(2 * threadCount + 2)
    {
    }

    // What the reader gets its blocks from.
    class Feed
    {
    public:
        // Waits for a block that is free; it comes as the writer left it. Throws when the run has
        // been stopped.
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
            return std::move(*block);
        }

        // Hands a filled block on.
        void submit(std::unique_ptr<Block> block)
        {
            Job job{std::move(block), {}};
            if (!_pipeline._results.push(job.done.get_future()))
                throw Stopped();
            if (_pipeline._workersLeft > 0) {
                --_pipeline._workersLeft;
                _startWorker();
            }
            _pipeline._jobs.push(std::move(job));
        }

    private:
        friend class Pipeline;
        Feed(Pipeline& pipeline, std::function<void()> startWorker)
            : _pipeline(pipeline)
            , _startWorker(std::move(startWorker))
        {
        }
        Pipeline& _pipeline;
        std::function<void()> _startWorker;
    };

    // read(Feed&) on a thread of its own; makeWork() on each worker's, giving what is called as
    // work(Block&); write(Block&) on the calling thread.
    template <class Read, class MakeWork, class Write>
    void run(const Read& read, const MakeWork& makeWork, const Write& write)
    {
        std::vector<std::jthread> workers; // the reader's, until it has ended
        const std::jthread reader(
            [&] { readAll(read, [&] { workers.emplace_back([&] { workAll(makeWork); }); }); });
        const StopAll stopAll{*this}; // runs before the joins
        while (auto result = _results.pop()) {
            std::unique_ptr<Block> block = result->get(); // rethrows what the others threw
            Interrupt::check();
            write(*block);
            _empty.push(std::move(block));
        }
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
    struct StopAll {
        Pipeline& pipeline;
        ~StopAll()
        {
            pipeline._empty.close();
            pipeline._jobs.close();
            pipeline._results.close();
        }
    };

    template <class Read> void readAll(const Read& read, const std::function<void()>& startWorker)
    {
        try {
            Feed feed(*this, startWorker);
            read(feed);
        } catch (const Stopped&) {
            return;
        } catch (...) {
            Done failed;
            failed.set_exception(std::current_exception());
            _results.push(failed.get_future());
        }
        _jobs.finish();
        _results.finish();
    }

    template <class MakeWork> void workAll(const MakeWork& makeWork)
    {
        try {
            auto work = makeWork();
            while (std::optional<Job> job = _jobs.pop())
                workOn(*job, work);
        } catch (...) { // makeWork found no memory: whatever this worker would have done fails
            while (std::optional<Job> job = _jobs.pop())
                job->done.set_exception(std::current_exception());
        }
    }

    template <class Work> static void workOn(Job& job, Work& work)
    {
        try {
            work(*job.block);
            job.done.set_value(std::move(job.block));
        } catch (...) {
            job.done.set_exception(std::current_exception());
        }
    }

    // The reader's: how many more there may be.
    unsigned _workersLeft;
    unsigned _blocksLeft;
    BlockingQueue<std::unique_ptr<Block>> _empty;
    BlockingQueue<Job> _jobs; // for whoever is free
    BlockingQueue<std::future<std::unique_ptr<Block>>> _results; // in the order of reading
};
