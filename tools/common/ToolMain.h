#pragma once

#include "tools/common/Failure.h"

#include <functional>

// How many threads compress: one for each processor this process may use, or PARCELO_THREADS.
unsigned compressingThreads();

// Runs a tool's `job`, prepared for signals, and returns its exit status; a failure is told as
// "NAME: TEXT" and becomes the status that `statusOf` gives for its kind.
int runTool(const char* name, const std::function<int()>& job,
    const std::function<int(FailureKind)>& statusOf);
