// Programs that tests start.
#pragma once

#include "system/FileDescriptor.h"
#include "tests/support/Files.h"

#include <csignal>
#include <optional>

#include <sys/mman.h>

namespace support
{

struct RunOptions {
    std::filesystem::path folder = {}; // where it runs; empty: where the test runs
    std::optional<Names> environment = {}; // NAME=value; none: the test's own
    std::string input = {};
    std::chrono::seconds timeout{60};
};

struct RunResult {
    int status = -1; // the exit status; 128 + the signal that ended it; 124 after the timeout
    std::string out = {};
    std::string err = {};
    long peakMemoryInBytes = 0;
};

// A program that runs beside the test, in a process group of its own. Its standard streams are
// files in memory: it is never held up by a reader, and its output can be looked at while it runs.
class RunningProgram
{
public:
    // The first argument is looked up in the test's PATH; status 127 when it cannot be started.
    explicit RunningProgram(Names arguments, RunOptions options = {});
    // Kills what still runs.
    ~RunningProgram();

    pid_t pid() const { return _pid; }
    // To the program alone, as a user's `kill` would.
    void signal(int number) const { ::kill(_pid, number); }
    std::string out() const { return readFile(_pathOf(_out)); }
    std::string err() const { return readFile(_pathOf(_err)); }
    // Waits for the end; after the timeout the whole group is killed.
    RunResult wait();

private:
    static std::string _pathOf(const FileDescriptor& file)
    {
        return "/proc/self/fd/" + std::to_string(file.number());
    }

    const RunOptions _options;
    const FileDescriptor _in{::memfd_create("in", MFD_CLOEXEC)},
        _out{::memfd_create("out", MFD_CLOEXEC)}, _err{::memfd_create("err", MFD_CLOEXEC)};
    pid_t _pid = -1;
    bool _ended = false;
};

// Starts a program and waits for its end.
inline RunResult run(const Names& arguments, const RunOptions& options = {})
{
    return RunningProgram(arguments, options).wait();
}

} // namespace support
