#include "app/commandline/TerminalProgress.h"

#include <algorithm>
#include <cstdlib>

#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

bool canRedraw()
{
    const char* terminal = std::getenv("TERM");
    return ::isatty(STDERR_FILENO) != 0 && terminal != nullptr && std::string(terminal) != "dumb";
}

// Asked anew each time: windows change their size.
int columnsOfTerminal()
{
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return 80; // one that does not know its size
    return size.ws_col;
}

std::string bar(long done, long total, std::size_t width)
{
    const auto filled = static_cast<std::size_t>(done) * width / static_cast<std::size_t>(total);
    return "[" + std::string(filled, '#') + std::string(width - filled, ' ') + "] ";
}

} // namespace

TerminalProgress::TerminalProgress(bool quiet)
    : _isShown(!quiet && canRedraw())
{
}

void TerminalProgress::draw()
{
    if (_isShown && _total > 0)
        _show(text(_done, _total, columnsOfTerminal() - 1));
}

void TerminalProgress::clear()
{
    if (!_drawn.empty())
        _show({});
}

std::string TerminalProgress::text(long done, long total, int columns)
{
    constexpr std::size_t frame = 3; // brackets and a blank
    constexpr std::size_t shortest = 4; // a shorter bar says nothing
    constexpr std::size_t longest = 40; // a longer one says no more
    const auto width = static_cast<std::size_t>(std::max(columns, 0));
    done = std::clamp(done, 0L, total);
    std::string percent = std::to_string(done * 100 / total) + "%";
    std::string numbers = std::string(4 - percent.size(), ' ') + percent + " "
        + std::to_string(done) + " of " + std::to_string(total);

    if (numbers.size() + frame + shortest <= width)
        return bar(done, total, std::min(width - numbers.size() - frame, longest)) + numbers;
    if (numbers.size() <= width)
        return numbers;
    return percent.size() <= width ? percent : "";
}

// One write for all, so that no half-drawn line is ever seen.
void TerminalProgress::_show(const std::string& text)
{
    if (text == _drawn)
        return;
    _drawn = text;
    const std::string line = "\r" + text + "\033[K";
    (void)::write(STDERR_FILENO, line.data(), line.size()); // a terminal that is gone shows nothing
}
