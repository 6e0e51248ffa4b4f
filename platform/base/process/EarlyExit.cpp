#include "platform/base/process/EarlyExit.h"

#include "platform/base/process/InterruptSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

[[noreturn]] void failWith(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

int statusOfEnded(pid_t child)
{
    constexpr int signalBase = 128; // as shells have it
    int status = 0;
    if (retryOnInterrupt([&] { return ::waitpid(child, &status, 0); }) < 0)
        return EXIT_FAILURE;
    return WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
}

// A byte is the status; the end of what can be read is the child's.
[[noreturn]] void waitFor(pid_t child, InterruptSignals& signals, const FileDescriptor& report)
{
    std::array<pollfd, 2> watched{pollfd{.fd = report.number(), .events = POLLIN, .revents = 0},
        pollfd{.fd = signals.descriptor(), .events = POLLIN, .revents = 0}};
    for (;;) {
        if (::poll(watched.data(), watched.size(), -1) < 0)
            continue; // the signal that is to be read next
        if (watched[1].revents != 0 && signals.take())
            ::kill(child, SIGTERM);
        if (watched[0].revents == 0)
            continue;
        unsigned char status = 0;
        const ssize_t count = ::read(report.number(), &status, 1);
        if (count >= 0)
            ::_exit(count == 1 ? status : statusOfEnded(child));
    }
}

} // namespace

EarlyExit::EarlyExit()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        failWith("cannot make a pipe");
    FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    InterruptSignals signals; // none is lost, whichever process it comes to
    const pid_t starter = ::getpid();
    const pid_t child = ::fork();
    if (child < 0)
        failWith("cannot start a process");
    if (child > 0) {
        writing.close();
        waitFor(child, signals, reading);
    }
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != starter)
        ::_exit(EXIT_FAILURE); // killed before that
    _report = std::move(writing);
}

void EarlyExit::leave(int status)
{
    ::prctl(PR_SET_PDEATHSIG, 0);
    const FileDescriptor nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nothing.number(), stream);
    (void)::chdir("/");
    const auto byte = static_cast<unsigned char>(status);
    (void)retryOnInterrupt([&] { return ::write(_report.number(), &byte, 1); });
    _report.close();
}
