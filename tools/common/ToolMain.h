// What the tools' main programs do alike.
#pragma once

#include "tools/common/Failure.h"

#include <initializer_list>
#include <span>
#include <utility>

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
    std::initializer_list<std::pair<FailureKind, int>> failures;
};

// Needs no memory, so that the lack of it can be told.
struct Tool {
    const char* name;
    const ToolStatuses& statuses;
    ToolResult (*job)(ToolArguments);

    // Runs the job, prepared for signals, and returns the exit status. A failure is told as
    // "NAME: TEXT".
    [[nodiscard]] int run(int argumentCount, const char* const* arguments) const;
};

// How many threads compress: one for each processor this process may use, or PARCELO_THREADS.
unsigned compressingThreads();
