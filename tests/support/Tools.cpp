#include "tests/support/Tools.h"

#include <algorithm>
#include <cstdlib>
#include <regex>

namespace fs = std::filesystem;

namespace support
{

const Tool& toolNamed(const std::string& name)
{
    static const std::vector<Tool> tools = {
        // skipped, nothing to do, write error, cannot create, usage, interrupted
        {"zip", "a.zip", 18, 12, 14, 15, 16, 9, zipReaders()},
        {"tar", "a.tar.gz", 1, 2, 2, 2, 2, 130, tarReaders()},
        {"ditto", "a.zip", 1, 2, 2, 2, 64, 130, zipReaders()},
    };
    return *std::ranges::find(tools, name, &Tool::name);
}

RunningProgram start(
    const Tool& tool, const fs::path& archive, const fs::path& item, const ToolOptions& options)
{
    const std::string stored = options.itemFolder + item.filename().native();
    Names arguments = options.prefix;
    const auto add
        = [&](const Names& more) { arguments.insert(arguments.end(), more.begin(), more.end()); };
    add({options.toolsFolder + "/" + tool.name});
    if (tool.name == "tar" && options.leaveOutDsStore)
        add({"--exclude", ".DS_Store"});
    add(tool.name == "zip" ? Names{options.level, "-y", "-r", archive, stored}
            : tool.name == "tar"
            ? Names{"-zhcf", archive, stored}
            : Names{"-V", "-c", "-k", "--keepParent", "--sequesterRsrc", stored, archive});
    if (tool.name == "zip" && options.leaveOutDsStore)
        add({"-x", "*/.DS_Store"});
    // The leak checker cannot run where another program traces ours.
    Names environment = options.environment;
    environment.push_back("ASAN_OPTIONS=detect_leaks=0");
    if (options.threads > 0)
        environment.push_back("PARCELO_THREADS=" + std::to_string(options.threads));
    return RunningProgram(arguments,
        {.folder = item.parent_path(), .environment = environment, .timeout = options.timeout});
}

Names warnedNames(const RunResult& result)
{
    static const std::regex form("^warning: (.*?): .+");
    Names names = linesOf(result.err);
    for (std::string& line : names)
        line = std::regex_replace(line, form, "$1");
    std::ranges::sort(names);
    return names;
}

bool isFullSweep()
{
    const char* const value = std::getenv("PARCELO_ALL_TESTS");
    return value != nullptr && std::string(value) == "1";
}

} // namespace support
