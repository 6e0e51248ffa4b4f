#include "tools/common/ToolMain.h"
#include "tools/tar/TarJob.h"
#include "tools/tar/TarOptions.h"

#include <span>

namespace
{

constexpr int someInputsMissing = 1;
constexpr int notMade = 2;
constexpr int interrupted = 130;

int statusOf(FailureKind kind)
{
    return kind == FailureKind::Interrupted ? interrupted : notMade;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const std::span<const char* const> all(arguments, static_cast<std::size_t>(argumentCount));
    const auto job = [&] {
        const TarOptions options = TarOptions::parse(all.subspan(1));
        const TarResult result = runTar(options, compressingThreads());
        return result == TarResult::Complete ? 0 : someInputsMissing;
    };
    return runTool("tar", job, statusOf);
}
