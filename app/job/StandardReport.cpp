#include "app/job/StandardReport.h"

#include "app/job/ToolMessages.h"

#include <algorithm>
#include <iostream>

bool StandardReport::complain(std::string message)
{
    // Control bytes of a name could move the cursor of a terminal, or worse.
    std::ranges::replace_if(message, ToolMessages::isControl, '?');
    for (auto at = message.find('\xc2'); at != message.npos; at = message.find('\xc2', at + 1))
        if (at + 1 < message.size() && (message[at + 1] & 0x60) == 0) // U+0080 to U+009F
            message.replace(at, 2, "?");
    std::cerr << "parcelo: " << message << "\n" << std::flush;
    return false;
}

int StandardReport::tell(const ArchiveJob::Result& result, bool wasInterrupted)
{
    if (wasInterrupted && !result.isMade) {
        complain("interrupted");
        return exitInterrupted;
    }
    for (const std::string& line : result.messages)
        complain(line);
    // What a tool said of itself is among the messages.
    if (result.problem && result.problem->kind != ArchiveProblem::Kind::toolFailed)
        complain(result.problem->line());
    if (!result.isMade) {
        complain("no archive was made");
        return exitFailed;
    }
    std::cout << result.archive->native() << "\n" << std::flush;
    if (!std::cout)
        complain("cannot write to standard output");
    return result.isWhole && std::cout ? exitMade : exitFailed;
}
