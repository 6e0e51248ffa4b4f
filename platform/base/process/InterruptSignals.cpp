#include "platform/base/process/InterruptSignals.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

namespace
{

int noteDescriptor = -1; // of the one object there is

void note(int /*number*/)
{
    const int formerError = errno;
    const std::uint64_t one = 1;
    (void)::write(noteDescriptor, &one, sizeof one);
    errno = formerError;
}

} // namespace

InterruptSignals::InterruptSignals()
    : _descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!_descriptor)
        throw std::system_error(errno, std::generic_category(), "cannot watch for signals");
    noteDescriptor = _descriptor.number();
    struct sigaction noting {
    };
    noting.sa_handler = note;
    noting.sa_flags = SA_RESTART;
    for (Former& former : _formers) {
        sigaction(former.number, nullptr, &former.action);
        if (former.number != SIGHUP || former.action.sa_handler != SIG_IGN)
            sigaction(former.number, &noting, nullptr);
    }
}

InterruptSignals::~InterruptSignals()
{
    for (const Former& former : _formers)
        sigaction(former.number, &former.action, nullptr);
    noteDescriptor = -1;
}

bool InterruptSignals::take()
{
    std::uint64_t count = 0;
    return ::read(_descriptor.number(), &count, sizeof count) == sizeof count;
}
