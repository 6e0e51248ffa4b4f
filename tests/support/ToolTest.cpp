#include "tests/support/ToolTest.h"

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

Names ToolTest::faults(const RunResult& result, const TreeSnapshot& expected,
    const std::set<std::string>& exceptReaders) const
{
    const std::regex form(tool.name == "ditto" ? R"(copying (file|symlink) \./[ -~]+ \.\.\. )"
            : tool.name == "zip"               ? R"(  adding: [ -~]+ \((deflated \d+%|stored 0%)\))"
                                               : "  adding: [ -~]+");
    Names found = tool.makesZips ? inspectZip(archive).complaints : nothing;
    const Names progress = linesOf(result.out);
    if (progress.size() != expected.size())
        found.push_back(std::to_string(progress.size()) + " lines of progress: " + result.out);
    std::ranges::copy_if(progress, std::back_inserter(found),
        [&](const std::string& line) { return !std::regex_match(line, form); });
    for (const ForeignReader& reader : tool.readers)
        if (!exceptReaders.contains(reader.name))
            std::ranges::copy(
                extractionFaults(reader, archive, expected), std::back_inserter(found));
    return found;
}
