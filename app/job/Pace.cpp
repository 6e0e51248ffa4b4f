#include "app/job/Pace.h"

#include <algorithm>
#include <cmath>

using namespace std::chrono_literals;

namespace
{

constexpr Pace::Seconds firstTold = 2s; // before, caches and starts tell more than the work does
constexpr Pace::Seconds interval = 1s; // between changes
constexpr Pace::Seconds memory = 8s; // long enough to be steady, short enough to follow a disk
constexpr double muchLonger = 2; // times what was told,
constexpr Pace::Seconds slack = 5s; // and this more

std::chrono::seconds inSteps(Pace::Seconds time)
{
    const double step = time < 1min ? 5 : 60;
    return std::chrono::seconds(std::llround(std::max(std::ceil(time.count() / step), 1.0) * step));
}

} // namespace

void Pace::add(Seconds time, double done, std::optional<double> fraction)
{
    if (!_begin)
        _toldAt = *(_begin = time);
    const Sample now{time, done, fraction};
    _samples.push_back(now);
    // One that is older stays: what is left is to reach over the whole of the memory.
    while (_samples.size() > 2 && time - _samples[1].time >= memory)
        _samples.pop_front();
    if (time - *_begin >= firstTold && time - _toldAt >= interval)
        _tell(now);
}

void Pace::_tell(const Sample& now)
{
    const auto perSecond = [&](const Sample& before, double done) {
        return done / (now.time - before.time).count();
    };
    _toldAt = now.time;
    _rate = perSecond(_samples.front(), now.done - _samples.front().done);
    _timeLeft.reset();
    const auto known = std::ranges::find_if(
        _samples, [](const Sample& sample) { return sample.fraction.has_value(); });
    if (known == _samples.end() || known->time == now.time)
        return;
    const double speed = perSecond(*known, *now.fraction - *known->fraction);
    if (speed > 0)
        _tellTimeLeft(Seconds((1 - *now.fraction) / speed));
}

void Pace::_tellTimeLeft(Seconds estimate)
{
    if (_shortest && estimate > muchLonger * *_shortest + slack)
        return;
    _shortest = std::min(_shortest.value_or(estimate), estimate);
    _timeLeft = inSteps(*_shortest);
}
