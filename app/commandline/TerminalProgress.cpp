#include "app/commandline/TerminalProgress.h"

#include "app/job/ToolMessages.h"
#include "system/Utf8.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <vector>

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

std::string bar(double fraction, std::size_t width)
{
    const auto filled = static_cast<std::size_t>(fraction * static_cast<double>(width));
    return "[" + std::string(filled, '#') + std::string(width - filled, ' ') + "] ";
}

// "2.0 GB", "312 MB": with a decimal as long as there is one digit before it.
std::string sizeText(double bytes)
{
    constexpr std::array units{"bytes", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    for (; bytes >= 999.5 && unit + 1 < units.size(); bytes /= 1000)
        ++unit;
    const auto tenths = std::llround(bytes * 10);
    return (unit > 0 && tenths < 100
                   ? std::to_string(tenths / 10) + "." + std::to_string(tenths % 10)
                   : std::to_string(std::llround(bytes)))
        + " " + units[unit];
}

std::string timeText(std::chrono::seconds time)
{
    const auto minutes = std::chrono::floor<std::chrono::minutes>(time).count();
    if (minutes == 0)
        return std::to_string(time.count()) + " s left";
    return (minutes < 60 ? "" : std::to_string(minutes / 60) + " h ") + std::to_string(minutes % 60)
        + " min left";
}

// What is no text, or could move the cursor, becomes a question mark.
std::string shownName(const std::string& name)
{
    const std::string printable = ToolMessages::printable(name);
    std::string shown;
    for (std::string_view rest = printable; !rest.empty();) {
        const std::size_t size = Utf8::sequenceLength(rest);
        shown += size > 0 ? rest.substr(0, size) : "?";
        rest.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return shown;
}

// Without its middle if need be. A character takes at most as many columns as bytes.
std::string fittingName(const std::string& name, std::size_t columns)
{
    constexpr std::string_view gap = "...";
    std::string shown = shownName(name);
    if (shown.size() <= columns)
        return shown;
    const std::size_t room = (columns - gap.size()) / 2;
    const auto isInside = [](char byte) { return (byte & 0xc0) == 0x80; }; // a character
    const auto tail
        = std::find_if_not(shown.end() - static_cast<std::ptrdiff_t>(room), shown.end(), isInside);
    return std::string(Utf8::shortened(shown, room)).append(gap).append(tail, shown.end());
}

// Those details that there are, the most important first.
std::vector<std::string> detailsOf(const JobProgress& read)
{
    std::vector<std::string> details;
    if (read.bytesInAll > 0)
        details.push_back(sizeText(static_cast<double>(read.bytesDone)) + " of "
            + sizeText(static_cast<double>(read.bytesInAll)));
    if (read.timeLeft)
        details.push_back(timeText(*read.timeLeft));
    if (read.bytesPerSecond)
        details.push_back(sizeText(*read.bytesPerSecond) + "/s");
    return details;
}

} // namespace

TerminalProgress::TerminalProgress(bool quiet)
    : _isShown(!quiet && canRedraw())
{
}

void TerminalProgress::setTotal(int total)
{
    const std::lock_guard lock(_mutex);
    _state.total = total;
}

void TerminalProgress::advanceBy(int count)
{
    const std::lock_guard lock(_mutex);
    _state.done += count;
}

void TerminalProgress::advanceTo(const JobProgress& progress)
{
    const std::lock_guard lock(_mutex);
    _state.read = progress;
}

void TerminalProgress::draw()
{
    if (!_isShown)
        return;
    State state;
    {
        const std::lock_guard lock(_mutex);
        state = _state;
    }
    if (state.total > 0)
        _show(text(state, columnsOfTerminal() - 1));
}

void TerminalProgress::clear()
{
    if (!_drawn.empty())
        _show({});
}

std::string TerminalProgress::text(const State& state, int columns)
{
    constexpr std::size_t frame = 3; // brackets and a blank
    constexpr std::size_t shortest = 4; // a shorter bar says nothing
    constexpr std::size_t longest = 40; // a longer one says no more
    constexpr std::size_t beforeName = 8; // columns of the bar, where there is room for a name
    constexpr std::size_t shortestName = 8;
    const auto width = static_cast<std::size_t>(std::max(columns, 0));
    const long done = std::clamp(state.done, 0L, state.total);
    const double fraction = state.read.fraction.value_or(
        static_cast<double>(done) / static_cast<double>(state.total));
    const std::string percent = std::to_string(static_cast<int>(fraction * 100)) + "%";
    std::string numbers = std::string(4 - percent.size(), ' ') + percent + " "
        + std::to_string(done) + " of " + std::to_string(state.total);

    if (numbers.size() > width)
        return percent.size() <= width ? percent : "";
    if (numbers.size() + frame + shortest > width)
        return numbers;
    for (const std::string& detail : detailsOf(state.read))
        if (numbers.size() + 2 + detail.size() + frame + shortest <= width)
            numbers += ", " + detail;
    std::size_t room = width - numbers.size() - frame;
    std::string name;
    if (!state.read.name.empty() && room >= beforeName + 2 + shortestName) {
        name = "  " + fittingName(state.read.name, room - beforeName - 2);
        room -= name.size();
    }
    return bar(fraction, std::min(room, name.empty() ? longest : beforeName)) + numbers + name;
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
