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

Names linesOf(const std::string& text)
{
    Names lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

void append(Names& names, const Names& more)
{
    names.insert(names.end(), more.begin(), more.end());
}

Names progressFaults(const Tool& tool, const std::string& out, std::size_t entries)
{
    const std::regex form(tool.name == "ditto" ? R"(copying (file|symlink) \./[ -~]+ \.\.\. )"
            : tool.name == "zip"               ? R"(  adding: [ -~]+ \((deflated \d+%|stored 0%)\))"
                                               : "  adding: [ -~]+");
    Names faults;
    const Names lines = linesOf(out);
    for (const std::string& line : lines) {
        if (!std::regex_match(line, form))
            faults.push_back("progress line '" + line + "'");
    }
    if (lines.size() != entries)
        faults.push_back(std::to_string(lines.size()) + " lines of progress for "
            + std::to_string(entries) + " entries");
    return faults;
}

} // namespace

const Tool& toolNamed(const std::string& name)
{
    static const std::vector<Tool> tools = {
        // skipped, nothing to do, write error, cannot create, usage, interrupted
        {"zip", "a.zip", true, 18, 12, 14, 15, 16, 9, zipReaders()},
        {"tar", "a.tar.gz", false, 1, 2, 2, 2, 2, 130, tarReaders()},
        {"ditto", "a.zip", true, 1, 2, 2, 2, 64, 130, zipReaders()},
    };
    return *std::ranges::find(tools, name, &Tool::name);
}

ToolCall callOf(
    const Tool& tool, const fs::path& archive, const fs::path& item, const ToolOptions& options)
{
    const std::string stored = "./" + item.filename().native();
    ToolCall call = {options.prefix, {.folder = item.parent_path()}};
    call.arguments.push_back(PARCELO_TOOLS_DIR "/" + tool.name);
    if (tool.name == "zip")
        append(call.arguments, {options.level, "-y", "-r", archive, stored});
    if (tool.name == "zip" && options.leaveOutDsStore)
        append(call.arguments, {"-x", "*/.DS_Store"});
    if (tool.name == "tar" && options.leaveOutDsStore)
        append(call.arguments, {"--exclude", ".DS_Store"});
    if (tool.name == "tar")
        append(call.arguments, {"-zhcf", archive, stored});
    if (tool.name == "ditto")
        append(
            call.arguments, {"-V", "-c", "-k", "--keepParent", "--sequesterRsrc", stored, archive});
    // The leak checker cannot run where another program traces ours.
    Names environment = options.environment;
    environment.push_back("ASAN_OPTIONS=detect_leaks=0");
    if (options.threads > 0)
        environment.push_back("PARCELO_THREADS=" + std::to_string(options.threads));
    call.options.environment = environment;
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
    static const std::regex form("warning: (.*?): .+");
    Names names;
    for (const std::string& line : linesOf(result.err)) {
        std::smatch match;
        names.push_back(std::regex_match(line, match, form) ? match[1].str() : line);
    }
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

ToolCall asOrdinaryUser(ToolCall call, const fs::path& folder)
{
    if (::geteuid() != 0)
        return call;
    const fs::path copy = folder / "tool";
    fs::copy_file(call.arguments.at(0), copy, fs::copy_options::overwrite_existing);
    fs::permissions(folder, fs::perms::all);
    call.arguments.at(0) = copy;
    const Names prefix = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    call.arguments.insert(call.arguments.begin(), prefix.begin(), prefix.end());
    return call;
}

bool isFullSweep()
{
    const char* const value = std::getenv("PARCELO_ALL_TESTS");
    return value != nullptr && std::string(value) == "1";
}

} // namespace support
