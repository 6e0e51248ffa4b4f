// What came of a job, told on the standard streams: the archive's path on standard output, all else
// on standard error. For programs without a window.
#pragma once

#include "app/job/ArchiveJob.h"

#include <string>

namespace StandardReport
{

enum ExitStatus : int { exitMade = 0, exitFailed = 1, exitInterrupted = 130 };

// A line behind the program's name. Always false, for the checks that end with it.
bool complain(const std::string& message);

// The exit status: 0 for a whole archive, 1 when something is missing or nothing was made.
[[nodiscard]] int tell(const ArchiveJob::Result& result, bool wasInterrupted);

} // namespace StandardReport
