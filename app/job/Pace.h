// How fast something goes, and how long it will still take, as people like to be told: not before
// there is something to tell, not more often than once a second, and no time left that grows. When
// it turns out to be much longer than what was told, nothing is told until it is as short again.
#pragma once

#include <chrono>
#include <deque>
#include <optional>

class Pace
{
public:
    using Seconds = std::chrono::duration<double>;

    // At that time so much has been done, in any unit, and that fraction of the whole, if that is
    // known.
    void add(Seconds time, double done, std::optional<double> fraction);

    // In that unit per second, over the last few seconds.
    [[nodiscard]] std::optional<double> rate() const { return _rate; }

    // In steps of 5 seconds, from a minute on of whole minutes; rounded up, and at least one step.
    [[nodiscard]] std::optional<std::chrono::seconds> timeLeft() const { return _timeLeft; }

private:
    struct Sample {
        Seconds time;
        double done;
        std::optional<double> fraction;
    };

    void _tell(const Sample& now);
    void _tellTimeLeft(Seconds estimate);

    std::deque<Sample> _samples; // of the last seconds
    std::optional<Seconds> _begin;
    Seconds _toldAt{};
    std::optional<double> _rate;
    std::optional<Seconds> _shortest; // the least that was told to be left
    std::optional<std::chrono::seconds> _timeLeft;
};
