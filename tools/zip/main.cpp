#include "tools/common/ToolMain.h"
#include "tools/zip/ZipJob.h"
#include "tools/zip/ZipOptions.h"

#include <span>

namespace
{

// The statuses that zip tools have always used.
int statusOf(FailureKind kind)
{
    switch (kind) {
    case FailureKind::BadArchive:
        return 3;
    case FailureKind::Memory:
        return 4;
    case FailureKind::Internal:
        return 5;
    case FailureKind::Interrupted:
        return 9;
    case FailureKind::NothingToDo:
        return 12;
    case FailureKind::Write:
        return 14;
    case FailureKind::CannotCreate:
    case FailureKind::NameTaken:
        return 15;
    case FailureKind::Usage:
        return 16;
    }
    return 5;
}

constexpr int someInputsMissing = 18;

} // namespace

int main(int argumentCount, char** arguments)
{
    const std::span<const char* const> all(arguments, static_cast<std::size_t>(argumentCount));
    const auto job = [&] {
        const ZipOptions options = ZipOptions::parse(all.subspan(1));
        const ZipResult result = runZip(options, compressingThreads());
        return result == ZipResult::Complete ? 0 : someInputsMissing;
    };
    return runTool("zip", job, statusOf);
}
