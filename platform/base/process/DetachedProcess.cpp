#include "platform/base/process/DetachedProcess.h"

#include "platform/base/process/Environment.h"
#include "platform/base/process/SpawnPlan.h"

#include <csignal>
#include <cstring>
#include <system_error>
#include <thread>

#include <sys/wait.h>

namespace
{

int wait(pid_t pid, int options, int& status)
{
    int code = 0;
    const pid_t ended = retryOnInterrupt([&] { return ::waitpid(pid, &code, options); });
    status = WIFSIGNALED(code) ? 128 + WTERMSIG(code) : WEXITSTATUS(code);
    return ended;
}

// A thread that sleeps until the program has ended and reaps it. It takes no signal that is meant
// for the rest of us.
void reapLater(pid_t pid)
{
    sigset_t all;
    sigset_t former;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &former);
    try {
        std::thread([pid] {
            int status = 0;
            wait(pid, 0, status);
        }).detach();
    } catch (const std::system_error&) {
        // no thread to be had: the zombie stays until we end
    }
    ::pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

} // namespace

DetachedProcess::DetachedProcess(const Setup& setup)
{
    const SpawnPlan plan(
        {.output = setup.output, .error = STDERR_FILENO}, SpawnPlan::Group::ofItsOwnSession);
    std::vector<std::string> vector = setup.arguments;
    vector.insert(vector.begin(), setup.program);
    std::vector<std::string> environment = Environment::ours(setup.changedEnvironment);
    const int reason
        = ::posix_spawnp(&_pid, setup.program.c_str(), plan.actions(), plan.attributes(),
            SpawnPlan::pointers(vector).data(), SpawnPlan::pointers(environment).data());
    if (reason != 0)
        throw LaunchFailure("cannot run '" + setup.program + "': " + std::strerror(reason));
    _exited = FileDescriptor(SpawnPlan::openProcess(_pid));
}

DetachedProcess::~DetachedProcess()
{
    if (!exitStatus())
        reapLater(_pid);
}

std::optional<int> DetachedProcess::exitStatus()
{
    int status = 0;
    if (!_status && wait(_pid, WNOHANG, status) != 0)
        _status = status;
    return _status;
}
