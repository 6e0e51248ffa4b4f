// launch DESCRIPTOR PROGRAM ARGUMENT...: runs a program to its end and prints, on the descriptor,
// its seconds, its seconds of processor time and the peak memory of its largest process in bytes.
// Exits with its status.
//
// A benchmark's own process is larger than what it measures, and a child's peak is never less than
// its parent's at its start. This one is linked statically to be small.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

int main(int argumentCount, char** arguments)
{
    if (argumentCount < 3)
        return 2;
    const int output = std::atoi(arguments[1]);
    fcntl(output, F_SETFD, FD_CLOEXEC);

    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments[2], nullptr, nullptr, arguments + 2, environ);
    if (error != 0) {
        std::fprintf(stderr, "%s: %s\n", arguments[2], std::strerror(error));
        return 127;
    }
    int status = 0;
    rusage used{};
    wait4(child, &status, 0, &used);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;

    const auto processor = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    dprintf(output, "%f %f %ld\n", seconds.count(),
        processor(used.ru_utime) + processor(used.ru_stime), used.ru_maxrss * 1024);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
