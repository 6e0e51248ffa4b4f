#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

// How far a job is, by what its tools have read. It never goes back.
struct JobProgress {
    std::uint64_t bytesDone = 0;
    std::uint64_t bytesInAll = 0; // 0 until it is known, or when there are none
    std::optional<double> fraction = std::nullopt; // of the work, 0 to 1, once it is known
    std::string name = {}; // of the file that is being read, as its bytes
    // Once they are known, and steady.
    std::optional<double> bytesPerSecond = std::nullopt;
    std::optional<std::chrono::seconds> timeLeft = std::nullopt; // in steps
};
