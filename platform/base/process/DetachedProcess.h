// A program of the desktop that is started for the user and lives on by itself: in a session of its
// own, with /dev/null as input and, unless it is given one, as output, our standard error, where a
// session keeps its log, and no other descriptor of ours. Its owner may watch for its end. When the
// owner goes, the program does not, and no zombie stays.
#pragma once

#include "platform/base/process/Task.h"
#include "system/FileDescriptor.h"

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

class DetachedProcess
{
public:
    struct Setup {
        std::string program; // a path, or a name that is looked up in PATH
        std::vector<std::string> arguments = {}; // without the program's own name
        std::vector<std::string> changedEnvironment = {}; // "NAME=value" besides or instead of ours
        int output = -1; // a descriptor for its standard output; -1: /dev/null
    };

    // Throws LaunchFailure (see Task.h).
    explicit DetachedProcess(const Setup& setup);
    DetachedProcess(const DetachedProcess&) = delete;
    DetachedProcess& operator=(const DetachedProcess&) = delete;
    ~DetachedProcess();

    // Readable when the program has ended; for poll() and the like. Valid as long as this object;
    // -1 when the system had none to give.
    [[nodiscard]] int exitDescriptor() const { return _exited.number(); }

    // The exit status, 128 + signal number when a signal ended it; nothing while it runs.
    [[nodiscard]] std::optional<int> exitStatus();

private:
    pid_t _pid = 0;
    FileDescriptor _exited; // a pidfd
    std::optional<int> _status = std::nullopt; // once it has been reaped
};
