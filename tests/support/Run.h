// Programs that tests start.
#pragma once

#include "system/FileDescriptor.h"
#include "tests/support/Files.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace support
{

struct RunOptions {
    std::filesystem::path folder = {}; // where it runs; empty: where the test runs
    std::optional<std::vector<std::string>> environment = {}; // NAME=value; none: the test's own
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
    explicit RunningProgram(const std::vector<std::string>& arguments, RunOptions options = {});
    // Kills what still runs.
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    pid_t pid() const { return _pid; }
    // To the program alone, as a user's `kill` would.
    void signal(int number) const;
    std::string out() const;
    std::string err() const;
    // Waits for the end; after the timeout the whole group is killed.
    RunResult wait();

private:
    const RunOptions _options;
    const FileDescriptor _in, _out, _err;
    pid_t _pid = -1;
    bool _ended = false;
};

// Starts a program and waits for its end.
RunResult run(const std::vector<std::string>& arguments, const RunOptions& options = {});

} // namespace support
