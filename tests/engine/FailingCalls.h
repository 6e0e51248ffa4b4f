// System calls that fail when a test says so.
#pragma once

#include <cstddef>
#include <thread>

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
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

// In a thread of its own, for what is not to last.
template <typename Work> void inThread(Work work)
{
    std::jthread{work}.join();
}
