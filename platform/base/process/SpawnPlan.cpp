#include "platform/base/process/SpawnPlan.h"

#include <csignal>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

void giveStream(posix_spawn_file_actions_t& actions, int ours, int theirs, int accessForNone)
{
    if (ours < 0)
        ::posix_spawn_file_actions_addopen(&actions, theirs, "/dev/null", accessForNone, 0);
    else
        ::posix_spawn_file_actions_adddup2(&actions, ours, theirs);
}

} // namespace

SpawnPlan::SpawnPlan(const Streams& streams, Group group)
{
    ::posix_spawn_file_actions_init(&_actions);
    giveStream(_actions, streams.output, STDOUT_FILENO, O_WRONLY);
    giveStream(_actions, streams.error, STDERR_FILENO, O_WRONLY);
    giveStream(_actions, streams.input, STDIN_FILENO, O_RDONLY);
    ::posix_spawn_file_actions_addclosefrom_np(&_actions, STDERR_FILENO + 1);

    ::posix_spawnattr_init(&_attributes);
    ::posix_spawnattr_setflags(&_attributes,
        static_cast<short>(
            static_cast<short>(group) | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK));
    ::posix_spawnattr_setpgroup(&_attributes, 0);
    sigset_t signals;
    ::sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&_attributes, &signals);
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&_attributes, &signals);
}

SpawnPlan::~SpawnPlan()
{
    ::posix_spawn_file_actions_destroy(&_actions);
    ::posix_spawnattr_destroy(&_attributes);
}

void SpawnPlan::setFolder(const std::filesystem::path& folder)
{
    ::posix_spawn_file_actions_addchdir_np(&_actions, folder.c_str());
}

std::vector<char*> SpawnPlan::pointers(std::vector<std::string>& strings)
{
    std::vector<char*> result;
    result.reserve(strings.size() + 1);
    for (std::string& string : strings)
        result.push_back(string.data());
    result.push_back(nullptr);
    return result;
}

int SpawnPlan::openProcess(pid_t pid)
{
    // glibc 2.36 declares pidfd_open without C linkage, so that C++ cannot link it.
    return static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
}
