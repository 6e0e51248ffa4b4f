// System calls that fail when a test says so.
#pragma once

#include "system/FileDescriptor.h"

#include <cstddef>
#include <functional>
#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

// Lets a system call fail from now on, in this thread for good; where its first argument is a
// descriptor, perhaps only from one number on.
inline void letFail(unsigned call, unsigned reason, unsigned fromDescriptor = 0)
{
    sock_filter program[] = {{BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
        {BPF_JMP | BPF_JEQ | BPF_K, 0, 3, call},
        {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, args)}, // its lower half
        {BPF_JMP | BPF_JGE | BPF_K, 0, 1, fromDescriptor},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ERRNO | reason},
        {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW}};
    const sock_fprog filter{.len = std::size(program), .filter = program};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), 0);
}

// In a thread of its own, for what is not to last. The sanitizer looks at a thread's state when it
// meets that type for the first time, and does so by writing to a pipe, which must not fail.
inline void inThread(const std::function<void()>& work)
{
    const auto run = [](const std::function<void()>& what) { std::jthread(what).join(); };
    static const bool isKnown = (run([] {}), true);
    if (isKnown)
        run(work);
}

// Runs the work in a thread of its own, whose system calls of these kinds, but not those of the
// programs that it starts, first ask with which error they are to fail: 0 for none. A close that
// fails has closed.
inline void askBefore(const std::vector<unsigned>& calls,
    const std::function<int(unsigned call)>& ask, const std::function<void()>& work)
{
    std::vector<sock_filter> program{{BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)}};
    for (std::size_t left = calls.size(); left > 0; --left)
        program.push_back({BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned char>(left), 0,
            calls[calls.size() - left]});
    program.push_back({BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW});
    program.push_back({BPF_RET | BPF_K, 0, 0, SECCOMP_RET_USER_NOTIF});
    std::promise<std::pair<int, pid_t>> listening;
    const std::jthread worker([&] {
        const sock_fprog filter{
            .len = static_cast<unsigned short>(program.size()), .filter = program.data()};
        prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
        const long listener = syscall(
            SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter);
        listening.set_value({static_cast<int>(listener), gettid()});
        if (listener >= 0)
            work();
    });
    const auto [number, thread] = listening.get_future().get();
    const FileDescriptor listener(number);
    ASSERT_TRUE(listener);
    pollfd watched{.fd = number, .events = POLLIN, .revents = 0};
    while (poll(&watched, 1, -1) > 0 && (watched.revents & POLLHUP) == 0) {
        seccomp_notif request{};
        if (ioctl(number, SECCOMP_IOCTL_NOTIF_RECV, &request) != 0)
            continue;
        const auto call = static_cast<unsigned>(request.data.nr);
        const int reason = static_cast<pid_t>(request.pid) == thread ? ask(call) : 0;
        if (reason != 0 && call == SYS_close)
            close(static_cast<int>(request.data.args[0]));
        seccomp_notif_resp answer{.id = request.id,
            .val = 0,
            .error = -reason,
            .flags = reason == 0 ? static_cast<unsigned>(SECCOMP_USER_NOTIF_FLAG_CONTINUE) : 0U};
        ioctl(number, SECCOMP_IOCTL_NOTIF_SEND, &answer);
    }
}
