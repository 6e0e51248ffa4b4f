// Follows a job by what its tools read: what the kernel counts for each, against what there is to
// read. So it needs no word from a tool, and a single large file has progress, too. Of items that
// get a run of the tool each, those that are done count whole, and a run costs as much as some
// bytes. Reading that is not of the items (a tool reads its archive, or a file twice) is taken for
// theirs, but never for more than there is.
//
// For the thread that runs the job.
#pragma once

#include "app/job/InputSizes.h"
#include "app/job/JobProgress.h"
#include "app/job/Pace.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

#include <sys/types.h>

class ReadProgress
{
public:
    // Begins to measure the items of an archive of that type.
    ReadProgress(const std::vector<std::filesystem::path>& items, int type, bool excludesDSStore);

    // A tool is at work.
    void look(pid_t tool);
    void toolHasEnded();

    // The job has ended, with an archive.
    void finish();

    [[nodiscard]] const JobProgress& progress() const { return _progress; }

private:
    void _lookForName(pid_t tool);
    [[nodiscard]] double _workOf(std::uint64_t bytes, std::size_t runs) const;
    void _advanceTo(std::uint64_t bytes);

    const bool _hasRunForEach; // item
    InputSizes _sizes;
    std::size_t _runs = 0; // that have ended
    std::uint64_t _readBefore = 0; // by them, as far as is known
    std::uint64_t _readByTool = 0;
    std::chrono::steady_clock::time_point _begin = std::chrono::steady_clock::now();
    Pace _pace;
    JobProgress _progress;
};
