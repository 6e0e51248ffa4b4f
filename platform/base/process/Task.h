// One child process. It reads nothing (its input is /dev/null or a pipe at its end), leads a
// process group of its own, starts with default signal dispositions and inherits no descriptor
// besides its three standard ones. One thread launches it and reads its output; any thread may
// interrupt it meanwhile.
#pragma once

#include "system/FileDescriptor.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

// A program could not be started. The text names it, or the working folder if that is missing.
class LaunchFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class Task
{
public:
    enum class Input { null, emptyPipe };
    enum class Output {
        combined, // both streams through one pipe
        standardErrorIsOurs, // only standard output is read, the other goes where ours does
    };
    using ChunkHandler = std::function<void(std::string_view bytes)>;

    struct Setup {
        std::filesystem::path launchPath;
        std::vector<std::string> arguments = {}; // without the program's own name
        std::vector<std::string> environment = {}; // "NAME=value", the whole of it
        std::filesystem::path currentDirectory = {}; // empty: ours
        Input input = Input::null;
        Output output = Output::combined;
    };

    // A look at the child now and then, while it is waited for; the time of the next one may come
    // with another child.
    struct Watch {
        std::function<void(pid_t child)> look;
        std::chrono::milliseconds interval{100};
        std::chrono::steady_clock::time_point next = {};
    };

    explicit Task(Setup setup);
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;

    // A child still running is interrupted; when it stays, it is killed after a grace period.
    ~Task();

    // Throws LaunchFailure.
    void launch();

    // Returns when the child has ended and been reaped, having handed on all its output in order,
    // in chunks of what one read gave (at most 64 KiB). Output still to come from a process
    // that the child left behind is not waited for. When the handler throws, the child is stopped
    // as in the destructor and the exception leaves.
    void readUntilExit(const ChunkHandler& onChunk, Watch* watch = nullptr);

    // The same, but goes on until the end of the output, which comes when the child and whatever it
    // left behind have closed it; the child's own end is waited for too.
    void readToEndOfOutput(const ChunkHandler& onChunk);

    // Launched and not yet reaped.
    [[nodiscard]] bool isRunning() const;

    // Sends SIGINT to the child's process group; nothing when it is not running.
    void interrupt();

    // As interrupt(), for whoever cannot wait for ever: called again some seconds after the first
    // time, it kills the child instead.
    void terminate();

    // The exit status; 128 + signal number for a child that was killed by a signal. Valid after
    // either way of reading.
    [[nodiscard]] int terminationStatus() const;

private:
    void _spawn(int standardInput, int standardOutput, int standardError);
    void _read(int exitDescriptor, const ChunkHandler& onChunk, Watch* watch);
    [[nodiscard]] int _lookAndWait(Watch* watch) const;
    void _readChunk(std::span<char> buffer, const ChunkHandler& onChunk);
    void _drain(std::span<char> buffer, const ChunkHandler& onChunk);
    void _signal(int number);
    void _reap();
    void _stop();

    Setup _setup;
    FileDescriptor _output; // until its end
    FileDescriptor _exited; // a pidfd: readable when the child has ended

    mutable std::mutex _mutex; // protects the rest: no signal may follow the reaping
    std::optional<std::chrono::steady_clock::time_point> _killTime; // of terminate()
    pid_t _pid = 0; // 0: not running
    int _status = 0; // as terminationStatus() gives it
};
