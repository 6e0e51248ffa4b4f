#include "tools/common/ToolMain.h"
#include "tools/ditto/DittoOptions.h"
#include "tools/ditto/ForkZip.h"
#include "tools/ditto/TreeCopy.h"

#include <span>

namespace
{

constexpr int someInputsMissing = 1;
constexpr int notMade = 2;
constexpr int wrongUsage = 64; // as sysexits.h has it
constexpr int interrupted = 130;

int statusOf(FailureKind kind)
{
    if (kind == FailureKind::Usage)
        return wrongUsage;
    return kind == FailureKind::Interrupted ? interrupted : notMade;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const std::span<const char* const> all(arguments, static_cast<std::size_t>(argumentCount));
    const auto job = [&] {
        const DittoOptions options = DittoOptions::parse(all.subspan(1));
        const bool isComplete = options.makesArchive ? makeForkZip(options, compressingThreads())
                                                     : copyTree(options.source, options.target);
        return isComplete ? 0 : someInputsMissing;
    };
    return runTool("ditto", job, statusOf);
}
