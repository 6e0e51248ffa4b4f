#include "app/InterruptSignals.h"

#include <cerrno>
#include <system_error>

#include <pthread.h>
#include <sys/signalfd.h>

InterruptSignals::InterruptSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {
        };
        sigaction(number, nullptr, &action);
        if (number != SIGHUP || action.sa_handler != SIG_IGN)
            sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, &_formerMask);
    _descriptor = FileDescriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!_descriptor)
        throw std::system_error(errno, std::generic_category(), "cannot watch for signals");
}

InterruptSignals::~InterruptSignals()
{
    take();
    pthread_sigmask(SIG_SETMASK, &_formerMask, nullptr);
}

bool InterruptSignals::take()
{
    bool any = false;
    signalfd_siginfo signal{};
    while (::read(_descriptor.number(), &signal, sizeof signal) == sizeof signal)
        any = true;
    return any;
}
