#include "platform/base/DetachedProcess.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace
{

class SpawnPlan
{
public:
    SpawnPlan()
    {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);

        ::posix_spawnattr_init(&attributes);
        ::posix_spawnattr_setflags(
            &attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        sigset_t signals;
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&attributes, &signals);
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes, &signals);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan()
    {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

// Our environment, in which the changes replace variables of the same name.
std::vector<std::string> environmentWith(const std::vector<std::string>& changes)
{
    std::vector<std::string> result = changes;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        const std::string_view name = text.substr(0, text.find('=') + 1);
        const bool isChanged = std::any_of(changes.begin(), changes.end(),
            [&](const std::string& change) { return change.starts_with(name); });
        if (!isChanged)
            result.emplace_back(text);
    }
    return result;
}

// posix_spawn takes pointers to changeable text, which it does not change.
std::vector<char*> pointers(std::vector<std::string>& strings)
{
    std::vector<char*> result;
    result.reserve(strings.size() + 1);
    for (std::string& string : strings)
        result.push_back(string.data());
    result.push_back(nullptr);
    return result;
}

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
    const SpawnPlan plan;
    std::vector<std::string> vector = setup.arguments;
    vector.insert(vector.begin(), setup.program);
    std::vector<std::string> environment = environmentWith(setup.changedEnvironment);
    const int reason = ::posix_spawnp(&_pid, setup.program.c_str(), &plan.actions, &plan.attributes,
        pointers(vector).data(), pointers(environment).data());
    if (reason != 0)
        throw LaunchFailure("cannot run '" + setup.program + "': " + std::strerror(reason));
    // glibc 2.36 declares pidfd_open without C linkage, so that C++ cannot link it.
    _exited = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, _pid, 0)));
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
