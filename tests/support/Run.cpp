#include "tests/support/Run.h"

#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support
{

RunningProgram::RunningProgram(Names arguments, RunOptions options)
    : _options(std::move(options))
{
    writeFile(_pathOf(_in), _options.input);
    // Everything is allocated here: after fork() only plain system calls are safe.
    if (_options.environment) {
        Names first = *_options.environment;
        first.insert(first.begin(), {"env", "-i"});
        arguments.insert(arguments.begin(), first.begin(), first.end());
    }
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    _pid = checked(::fork(), "fork");
    if (_pid == 0) {
        ::setpgid(0, 0);
        if (::dup2(_in.number(), 0) == 0 && ::dup2(_out.number(), 1) == 1
            && ::dup2(_err.number(), 2) == 2
            && (_options.folder.empty() || ::chdir(_options.folder.c_str()) == 0))
            ::execvp(argv[0], argv.data());
        ::_exit(127);
    }
    ::setpgid(_pid, _pid); // whichever of the two comes first
}

RunningProgram::~RunningProgram()
{
    if (_ended)
        return;
    ::kill(-_pid, SIGKILL);
    ::waitpid(_pid, nullptr, 0);
}

RunResult RunningProgram::wait()
{
    // glibc 2.36 declares pidfd_open() with C++ linkage, so that it cannot be linked.
    const FileDescriptor program(static_cast<int>(::syscall(SYS_pidfd_open, _pid, 0)));
    pollfd end = {program.number(), POLLIN, 0};
    const std::chrono::milliseconds timeout = _options.timeout;
    const bool inTime = ::poll(&end, 1, static_cast<int>(timeout.count())) == 1;
    if (!inTime)
        ::kill(-_pid, SIGKILL);

    int status = 0;
    rusage usage = {};
    ::wait4(_pid, &status, 0, &usage);
    _ended = true;
    const int code = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return {inTime ? code : 124, out(), err(), usage.ru_maxrss * 1024};
}

} // namespace support
