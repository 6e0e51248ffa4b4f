// What the tools' main programs do alike.
#pragma once

#include "tools/common/Failure.h"

#include <functional>
#include <span>
#include <utility>
#include <vector>

using ToolArguments = std::span<const char* const>; // without the program's name

// What a tool has made when it has not failed.
enum class ToolResult {
    complete,
    withWarnings, // something was left out or has changed while it was read
};

// Exit statuses; that of a complete result is 0.
struct ToolStatuses {
    int withWarnings;
    int failed; // in all ways but these:
    std::vector<std::pair<FailureKind, int>> failures;
};

struct Tool {
    const char* name;
    ToolStatuses statuses;
    std::function<ToolResult(ToolArguments)> job;

    // Runs the job, prepared for signals, and returns the exit status. A failure is told as
    // "NAME: TEXT".
    [[nodiscard]] int run(int argumentCount, const char* const* arguments) const;
};

// How many threads compress: one for each processor this process may use, or PARCELO_THREADS.
unsigned compressingThreads();
