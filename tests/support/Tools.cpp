#include "tests/support/Tools.h"

#include "tests/support/ZipInspector.h"

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <sstream>

#include <unistd.h>

namespace fs = std::filesystem;

namespace support
{

namespace
{

void append(Names& names, const Names& more)
{
    names.insert(names.end(), more.begin(), more.end());
}

Names progressFaults(const Tool& tool, const std::string& out, std::size_t entries)
{
    const std::regex form(tool.name == "ditto" ? R"(copying (file|symlink) \./[ -~]+ \.\.\. )"
            : tool.name == "zip"               ? R"(  adding: [ -~]+ \((deflated \d+%|stored 0%)\))"
                                               : "  adding: [ -~]+");
    Names faults = linesOf(out);
    if (faults.size() != entries)
        return {std::to_string(faults.size()) + " lines of progress for the entries: " + out};
    std::erase_if(faults, [&](const std::string& line) { return std::regex_match(line, form); });
    return faults;
}

} // namespace

Names linesOf(const std::string& text)
{
    Names lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

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

ToolCall callOf(
    const Tool& tool, const fs::path& archive, const fs::path& item, const ToolOptions& options)
{
    const std::string stored = "./" + item.filename().native();
    ToolCall call = {options.prefix, {.folder = item.parent_path(), .timeout = options.timeout}};
    append(call.arguments, {options.toolsFolder + "/" + tool.name});
    if (tool.name == "tar" && options.leaveOutDsStore)
        append(call.arguments, {"--exclude", ".DS_Store"});
    append(call.arguments,
        tool.name == "zip" ? Names{options.level, "-y", "-r", archive, stored}
            : tool.name == "tar"
            ? Names{"-zhcf", archive, stored}
            : Names{"-V", "-c", "-k", "--keepParent", "--sequesterRsrc", stored, archive});
    if (tool.name == "zip" && options.leaveOutDsStore)
        append(call.arguments, {"-x", "*/.DS_Store"});
    call.options.environment = options.environment;
    // The leak checker cannot run where another program traces ours.
    append(*call.options.environment, {"ASAN_OPTIONS=detect_leaks=0"});
    if (options.threads > 0)
        append(*call.options.environment, {"PARCELO_THREADS=" + std::to_string(options.threads)});
    return call;
}

RunResult run(
    const Tool& tool, const fs::path& archive, const fs::path& item, const ToolOptions& options)
{
    const ToolCall call = callOf(tool, archive, item, options);
    return run(call.arguments, call.options);
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

Names faultsOf(const Tool& tool, const RunResult& result, const fs::path& archive,
    const TreeSnapshot& expected, const std::set<std::string>& except)
{
    Names faults = progressFaults(tool, result.out, expected.size());
    if (tool.makesZips)
        append(faults, inspectZip(archive).complaints);
    for (const ForeignReader& reader : tool.readers) {
        if (!except.contains(reader.name))
            append(faults, extractionFaults(reader, archive, expected));
    }
    return faults;
}

RunResult runAsOrdinaryUser(ToolCall call, const fs::path& folder)
{
    if (::geteuid() == 0) {
        fs::copy_file(call.arguments.at(0), folder / "tool");
        fs::permissions(folder, fs::perms::all);
        Names prefix = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
        call.arguments.at(0) = folder / "tool";
        call.arguments.insert(call.arguments.begin(), prefix.begin(), prefix.end());
    }
    return run(call.arguments, call.options);
}

bool isFullSweep()
{
    const char* const value = std::getenv("PARCELO_ALL_TESTS");
    return value != nullptr && std::string(value) == "1";
}

} // namespace support
