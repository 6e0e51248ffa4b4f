#include "tests/support/Tools.h"

#include "tests/support/ZipInspector.h"

#include <algorithm>
#include <regex>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

namespace support
{

namespace
{

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> progressFaults(
    const Tool& tool, const std::string& out, std::size_t entries)
{
    const std::regex form(tool.name == "ditto" ? R"(copying (file|symlink) \./[ -~]+ \.\.\. )"
            : tool.name == "zip"               ? R"(  adding: [ -~]+ \((deflated \d+%|stored 0%)\))"
                                               : "  adding: [ -~]+");
    std::vector<std::string> faults;
    const std::vector<std::string> lines = linesOf(out);
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

const Tool& zipTool()
{
    static const Tool tool = {.name = "zip",
        .archiveName = "a.zip",
        .makesZips = true,
        .skipped = 18,
        .nothingToDo = 12,
        .writeError = 14,
        .cannotCreate = 15,
        .usage = 16,
        .interrupted = 9,
        .readers = zipReaders()};
    return tool;
}

const Tool& tarTool()
{
    static const Tool tool = {.name = "tar",
        .archiveName = "a.tar.gz",
        .makesZips = false,
        .skipped = 1,
        .nothingToDo = 2,
        .writeError = 2,
        .cannotCreate = 2,
        .usage = 2,
        .interrupted = 130,
        .readers = tarReaders()};
    return tool;
}

const Tool& dittoTool()
{
    static const Tool tool = {.name = "ditto",
        .archiveName = "a.zip",
        .makesZips = true,
        .skipped = 1,
        .nothingToDo = 2,
        .writeError = 2,
        .cannotCreate = 2,
        .usage = 64,
        .interrupted = 130,
        .readers = zipReaders()};
    return tool;
}

const Tool& toolNamed(const std::string& name)
{
    return name == "zip" ? zipTool() : name == "tar" ? tarTool() : dittoTool();
}

ToolCall callOf(const Tool& tool, const std::filesystem::path& archive,
    const std::filesystem::path& item, const ToolOptions& options)
{
    const std::string name = item.filename();
    ToolCall call = {options.prefix, {.folder = item.parent_path()}};
    call.arguments.push_back(PARCELO_TOOLS_DIR "/" + tool.name);
    const auto add = [&](const std::vector<std::string>& words) {
        call.arguments.insert(call.arguments.end(), words.begin(), words.end());
    };
    if (tool.name == "zip") {
        add({options.level, "-y", "-r", archive, "./" + name});
        if (options.leaveOutDsStore)
            add({"-x", "*/.DS_Store"});
    } else if (tool.name == "ditto") {
        add({"-V", "-c", "-k", "--keepParent", "--sequesterRsrc", "./" + name, archive});
    } else {
        if (options.leaveOutDsStore)
            add({"--exclude", ".DS_Store"});
        add({"-zhcf", archive, "./" + name});
    }
    call.options.environment = options.environment;
    // The leak checker cannot run where another program traces ours.
    call.options.environment->push_back("ASAN_OPTIONS=detect_leaks=0");
    if (options.threads > 0)
        call.options.environment->push_back("PARCELO_THREADS=" + std::to_string(options.threads));
    return call;
}

RunResult run(const Tool& tool, const std::filesystem::path& archive,
    const std::filesystem::path& item, const ToolOptions& options)
{
    const ToolCall call = callOf(tool, archive, item, options);
    return run(call.arguments, call.options);
}

std::vector<std::string> warnedNames(const RunResult& result)
{
    static const std::regex form("warning: (.*?): .+");
    std::vector<std::string> names;
    for (const std::string& line : linesOf(result.err)) {
        std::smatch match;
        names.push_back(std::regex_match(line, match, form) ? match[1].str() : line);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> faultsOf(const Tool& tool, const RunResult& result,
    const std::filesystem::path& archive, const TreeSnapshot& expected,
    const std::set<std::string>& except)
{
    std::vector<std::string> faults = progressFaults(tool, result.out, expected.size());
    const auto add = [&](const std::vector<std::string>& more) {
        faults.insert(faults.end(), more.begin(), more.end());
    };
    if (tool.makesZips)
        add(inspectZip(archive).complaints);
    for (const ForeignReader& reader : tool.readers) {
        if (!except.contains(reader.name))
            add(extractionFaults(reader, archive, expected));
    }
    return faults;
}

ToolCall asOrdinaryUser(ToolCall call, const std::filesystem::path& folder)
{
    if (geteuid() != 0)
        return call;
    const std::filesystem::path copy = folder / "tool";
    std::filesystem::copy_file(
        call.arguments.at(0), copy, std::filesystem::copy_options::overwrite_existing);
    chmod(folder.c_str(), 0777);
    call.arguments.at(0) = copy;
    const std::vector<std::string> prefix
        = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    call.arguments.insert(call.arguments.begin(), prefix.begin(), prefix.end());
    return call;
}

} // namespace support
