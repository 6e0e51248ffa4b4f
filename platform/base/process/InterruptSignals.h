// SIGINT, SIGTERM and SIGHUP as something to read, for as long as this object lives. A SIGHUP that
// is ignored (nohup) stays so; a SIGINT does not, because shells ignore it for what they start with
// "&". Programs that are started meanwhile do not inherit any of it. One at a time, on the main
// thread.
#pragma once

#include "system/FileDescriptor.h"

#include <array>
#include <csignal>

class InterruptSignals
{
public:
    // Throws std::system_error.
    InterruptSignals();
    InterruptSignals(const InterruptSignals&) = delete;
    InterruptSignals& operator=(const InterruptSignals&) = delete;

    // What was not taken is forgotten.
    ~InterruptSignals();

    // Can be read when a signal has come.
    [[nodiscard]] int descriptor() const { return _descriptor.number(); }

    // Takes what has come; true if anything has.
    bool take();

private:
    struct Former {
        int number;
        struct sigaction action {
        };
    };

    FileDescriptor _descriptor;
    std::array<Former, 3> _formers{Former{SIGINT}, Former{SIGTERM}, Former{SIGHUP}};
};
