#pragma once

#include <cstdint>
#include <functional>
#include <optional>

// Class-level helpers; there are no instances.
class QKUtility
{
public:
    QKUtility() = delete;

    // Runs the block once on the main thread, no sooner than the delay (in seconds; zero or less:
    // the next turn of the main queue). Any thread; returns at once.
    static void afterDelay(double seconds, std::function<void()> runBlock);

    // The operating system's version in the packed form 0xMMmb (0x1068 for 10.6.8), asked for until
    // it is known and then kept; 0 when unknown. Linux has no such version.
    static std::int32_t systemVersion();
    static bool isJaguar(); // 0x1020 to 0x102F
    static bool isPanther(); // 0x1030 to 0x103F

    // What systemVersion() asks, nothing when it fails; setting it also forgets the version. For
    // tests.
    using VersionQuery = std::function<std::optional<std::int32_t>()>;
    static void setVersionQuery(VersionQuery query);
};
