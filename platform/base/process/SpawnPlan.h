// The attributes and file actions with which posix_spawn starts a program that gets none of our
// other descriptors, no blocked or ignored signal, and a process group of its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <spawn.h>
#include <sys/types.h>

class SpawnPlan
{
public:
    // What the program has as its standard streams; /dev/null for -1.
    struct Streams {
        int input = -1;
        int output = -1;
        int error = -1;
    };
    enum class Group : short {
        ofOurSession = POSIX_SPAWN_SETPGROUP,
        ofItsOwnSession = POSIX_SPAWN_SETSID,
    };

    SpawnPlan(const Streams& streams, Group group);
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan();

    void setFolder(const std::filesystem::path& folder);

    [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &_actions; }
    [[nodiscard]] const posix_spawnattr_t* attributes() const { return &_attributes; }

    // `strings` as posix_spawn takes them: pointers to changeable text, which it does not change.
    static std::vector<char*> pointers(std::vector<std::string>& strings);

    // A descriptor that is readable once the process has ended; -1, with errno set, when there is
    // none to be had.
    static int openProcess(pid_t pid);

private:
    posix_spawn_file_actions_t _actions{};
    posix_spawnattr_t _attributes{};
};
