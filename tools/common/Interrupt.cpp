#include "tools/common/Interrupt.h"

#include "tools/common/Failure.h"

#include <atomic>
#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

namespace
{

using Action = struct sigaction; // a name of its own, beside the function

std::atomic<bool> stopRequested = false;
static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal handler");

void requestStop(int)
{
    stopRequested = true;
}

} // namespace

namespace Interrupt
{

void install()
{
    bool outlivesParent = false;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        Action action{};
        ::sigaction(signal, nullptr, &action);
        if (signal == SIGHUP && action.sa_handler == SIG_IGN) {
            outlivesParent = true;
            continue;
        }
        action = {};
        action.sa_handler = requestStop;
        ::sigaction(signal, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    if (outlivesParent)
        return;
    const pid_t parent = ::getppid();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) // it has ended before its end was to be told
        stopRequested = true;
}

bool isRequested()
{
    return stopRequested;
}

void check()
{
    if (stopRequested)
        throw Failure(FailureKind::interrupted, "interrupted");
}

} // namespace Interrupt
