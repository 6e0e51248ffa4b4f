#include "tools/common/ToolMain.h"

#include "system/FileDescriptor.h"
#include "tools/common/Interrupt.h"
#include "tools/common/Messages.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace
{

// More threads than this gain nothing that one reader could keep up with.
constexpr unsigned mostThreads = 64;

// A standard stream that is closed would make the next file opened, the archive for one, take its
// place.
void openStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0)
            (void)::open("/dev/null", O_RDWR); // takes the lowest free number, which is this one
    // A terminal that nobody reads would hold up the thread that writes, and not the one that gets
    // the signal to stop. Opened anew, ours does not wait; that of others is left as it is.
    for (const auto& [stream, path] : {std::pair(STDOUT_FILENO, "/proc/self/fd/1"),
             std::pair(STDERR_FILENO, "/proc/self/fd/2")}) {
        const FileDescriptor own(::isatty(stream) == 1
                ? ::open(path, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)
                : -1);
        if (own)
            ::dup2(own.number(), stream);
    }
}

// Returns the exit status.
int fail(const Tool& tool, FailureKind kind, std::string_view text)
{
    Messages::tell(tool.name, text);
    for (const auto& [failure, status] : tool.statuses.failures)
        if (failure == kind)
            return status;
    return tool.statuses.failed;
}

int failWithoutMemory(const Tool& tool)
{
    return fail(tool, FailureKind::memory, "out of memory");
}

const Tool* running = nullptr;

// The C++ library sets memory aside for exceptions before anything else is done. If there was none
// even for that, the first one ends here: the blocks that come before any writing need far more.
[[noreturn]] void terminate()
{
    if (std::current_exception())
        std::abort();
    ::_exit(failWithoutMemory(*running));
}

} // namespace

unsigned compressingThreads()
{
    if (const char* wanted = std::getenv("PARCELO_THREADS"))
        return static_cast<unsigned>(std::clamp<long>(std::atol(wanted), 1, mostThreads));
    cpu_set_t processors;
    if (::sched_getaffinity(0, sizeof processors, &processors) != 0)
        return 1;
    return std::clamp(static_cast<unsigned>(CPU_COUNT(&processors)), 1U, mostThreads);
}

int Tool::run(int argumentCount, const char* const* arguments) const
{
    // Times are stored in the zone of this machine, whatever zone the caller happens to work in.
    ::unsetenv("TZ"); // NOLINT(concurrency-mt-unsafe): no thread has been started yet
    openStandardStreams();
    Interrupt::install();
    running = this;
    std::set_terminate(terminate);
    try {
        const ToolArguments all(arguments, static_cast<std::size_t>(argumentCount));
        return job(all.subspan(1)) == ToolResult::complete ? 0 : statuses.withWarnings;
    } catch (const Failure& failure) {
        return fail(*this, failure.kind(), failure.what());
    } catch (const std::bad_alloc&) {
        return failWithoutMemory(*this);
    } catch (const std::exception& error) {
        return fail(*this, FailureKind::internal, error.what());
    }
}
