// A progress bar of one line on standard error, where that is a terminal that can redraw a line.
// Any thread counts; the main thread draws, as often as it likes: what did not change is not
// written. A line never reaches the last column, so it never wraps.
#pragma once

#include <atomic>
#include <string>

class TerminalProgress
{
public:
    // Draws nothing when quiet.
    explicit TerminalProgress(bool quiet);

    [[nodiscard]] bool isShown() const { return _isShown; }
    void setTotal(int total) { _total = total; }
    void advanceBy(int count) { _done += count; }

    void draw();
    void clear();

    // The bar in at most that many columns: "[####    ]  50% 6 of 12"; of that what fits.
    static std::string text(long done, long total, int columns);

private:
    void _show(const std::string& text);

    const bool _isShown;
    std::string _drawn;
    std::atomic<long> _total = 0; // 0: not known yet
    std::atomic<long> _done = 0;
};
