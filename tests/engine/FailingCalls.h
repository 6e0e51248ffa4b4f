// System calls that fail when a test says so.
#pragma once

#include "system/FileDescriptor.h"
#include "tests/support/Test.h"

#include <atomic>
#include <future>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

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
    std::atomic<bool> isOver = false; // what a sanitizer does as the thread ends is not to fail
    const std::jthread worker([&] {
        const sock_fprog filter{
            .len = static_cast<unsigned short>(program.size()), .filter = program.data()};
        prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
        const long listener = syscall(
            SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter);
        listening.set_value({static_cast<int>(listener), gettid()});
        if (listener >= 0)
            work();
        isOver = true;
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
        const int reason = static_cast<pid_t>(request.pid) == thread && !isOver ? ask(call) : 0;
        if (reason != 0 && call == SYS_close)
            close(static_cast<int>(request.data.args[0]));
        seccomp_notif_resp answer{.id = request.id,
            .val = 0,
            .error = -reason,
            .flags = reason == 0 ? static_cast<unsigned>(SECCOMP_USER_NOTIF_FLAG_CONTINUE) : 0U};
        ioctl(number, SECCOMP_IOCTL_NOTIF_SEND, &answer);
    }
}

// The same where calls always fail alike.
inline void letFail(const std::map<unsigned, int>& reasons, const std::function<void()>& work)
{
    std::vector<unsigned> calls;
    for (const auto& [call, reason] : reasons)
        calls.push_back(call);
    const auto ask = [&](unsigned call) { return reasons.at(call); };
    askBefore(calls, ask, work);
}
