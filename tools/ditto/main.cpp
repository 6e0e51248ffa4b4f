#include "tools/common/ToolMain.h"
#include "tools/ditto/ForkZip.h"
#include "tools/ditto/TreeCopy.h"

int main(int argumentCount, char** arguments)
{
    static constexpr ToolStatuses statuses{.withWarnings = 1,
        .failed = 2,
        .failures = {{FailureKind::usage, 64}, // as sysexits.h has it
            {FailureKind::interrupted, 130}}};
    const auto job = [](ToolArguments given) {
        const DittoOptions options = DittoOptions::parse(given);
        return options.makesArchive ? makeForkZip(options)
                                    : copyTree(options.source, options.target);
    };
    return Tool{"ditto", statuses, job}.run(argumentCount, arguments);
}
