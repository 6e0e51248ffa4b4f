// A progress bar of one line on standard error, where that is a terminal that can redraw a line.
// Any thread counts; the main thread draws, as often as it likes: what did not change is not
// written. A line never reaches the last column, so it never wraps.
#pragma once

#include "app/job/JobProgress.h"

#include <mutex>
#include <string>

class TerminalProgress
{
public:
    // Draws nothing when quiet.
    explicit TerminalProgress(bool quiet);

    [[nodiscard]] bool isShown() const { return _isShown; }
    void setTotal(int total);
    void advanceBy(int count);
    void advanceTo(const JobProgress& progress);

    void draw();
    void clear();

    struct State {
        long done = 0; // files
        long total = 0; // 0: not known yet
        JobProgress read = {};
    };

    // In at most that many columns what fits of this, by bytes once these are known:
    // "[####    ]  50% 6 of 12, 312 MB of 2.0 GB, 35 s left, 48 MB/s  name".
    static std::string text(const State& state, int columns);

private:
    void _show(const std::string& text);

    const bool _isShown;
    std::string _drawn;
    std::mutex _mutex; // protects the state, which the job's thread changes
    State _state;
};
