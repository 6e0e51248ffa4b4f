#include "tools/common/ToolMain.h"
#include "tools/tar/TarJob.h"

int main(int argumentCount, char** arguments)
{
    static constexpr ToolStatuses statuses{
        .withWarnings = 1, .failed = 2, .failures = {{FailureKind::interrupted, 130}}};
    const Tool tar{
        "tar", statuses, [](ToolArguments given) { return runTar(TarOptions::parse(given)); }};
    return tar.run(argumentCount, arguments);
}
