#include "tools/common/ToolMain.h"
#include "tools/zip/ZipJob.h"

int main(int argumentCount, char** arguments)
{
    using enum FailureKind;
    // The statuses that zip tools have always used.
    static constexpr ToolStatuses statuses{.withWarnings = 18,
        .failed = 5,
        .failures = {{badArchive, 3}, {memory, 4}, {interrupted, 9}, {nothingToDo, 12}, {write, 14},
            {cannotCreate, 15}, {nameTaken, 15}, {usage, 16}}};
    const Tool zip{
        "zip", statuses, [](ToolArguments given) { return runZip(ZipOptions::parse(given)); }};
    return zip.run(argumentCount, arguments);
}
