// Lets whoever started this program have its exit status while it goes on for a while: to hear what
// becomes of a notification, say. The process that was started waits, and a child of it does the
// work.
#pragma once

#include "system/FileDescriptor.h"

class EarlyExit
{
public:
    // Returns in the child alone. The other process passes on SIGINT, SIGTERM and SIGHUP, and ends
    // with the status that the child leaves or, without, ends with; should it be killed, the child
    // is told by SIGTERM. To be called while there is one thread. Throws std::system_error.
    EarlyExit();

    // The process that was started ends with that status. This one is in nobody's way from then on:
    // what it writes to its standard streams, whose readers wait for the end, goes nowhere, and it
    // leaves its folder, which may be on a disk that somebody wants to take out. Once.
    void leave(int status);

private:
    FileDescriptor _report; // to the process that waits
};
