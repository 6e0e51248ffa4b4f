#include "app/job/StandardReport.h"

#include "app/job/ToolMessages.h"

#include <iostream>

bool StandardReport::complain(const std::string& message)
{
    std::cerr << "parcelo: " << ToolMessages::printable(message) << "\n" << std::flush;
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
