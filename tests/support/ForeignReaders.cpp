#include "tests/support/ForeignReaders.h"

#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <cstdlib>
#include <string_view>
#include <utility>

namespace support
{

namespace
{

// Runs one of the commands of a reader: nothing to complain of, or one line.
std::vector<std::string> complaints(const ForeignReader& reader, std::vector<std::string> command,
    const std::filesystem::path& archive, const std::filesystem::path& folder = {})
{
    const std::pair<std::string_view, std::string> meanings[]
        = {{"{archive}", archive}, {"{folder}", folder}};
    for (std::string& word : command) {
        for (const auto& [placeholder, path] : meanings) {
            if (const std::size_t at = word.find(placeholder); at != std::string::npos)
                word.replace(at, placeholder.size(), path);
        }
    }
    // In a locale without UTF-8 some of them skip names.
    command.insert(command.begin(), {"env", "LC_ALL=C.UTF-8"});
    const RunResult result = run(command, {.timeout = std::chrono::minutes(4)});
    if (result.status == 0)
        return {};
    return {reader.name + " ended with " + std::to_string(result.status) + ": " + result.err
        + result.out.substr(0, 2000)};
}

} // namespace

const std::vector<ForeignReader>& zipReaders()
{
    static const std::vector<ForeignReader> readers = {
        {"unzip", {"unzip", "-tqq", "{archive}"},
            {"unzip", "-qq", "-o", "-^", "-K", "{archive}", "-d", "{folder}"}, {}},
        {"7z", {"7z", "t", "-bso0", "-bsp0", "{archive}"},
            {"7z", "x", "-y", "-bso0", "-bsp0", "{archive}", "-o{folder}"}, {.modeMask = 0}},
        {"bsdtar", {"sh", "-c", "bsdtar -xOf \"$0\" > /dev/null", "{archive}"},
            {"bsdtar", "-xpf", "{archive}", "-C", "{folder}"}, {}},
    };
    return readers;
}

const std::vector<ForeignReader>& tarReaders()
{
    static const std::vector<ForeignReader> readers = {
        {"tar", {"tar", "-tzf", "{archive}"}, {"tar", "-xpzf", "{archive}", "-C", "{folder}"}, {}},
        {"bsdtar", {"bsdtar", "-tf", "{archive}"},
            {"bsdtar", "-xpf", "{archive}", "-C", "{folder}"}, {}},
        {"7z", {"sh", "-c", "7z x -so \"$0\" | 7z t -si -ttar -bso0 -bsp0", "{archive}"},
            {"sh", "-c", "7z x -so \"$0\" | 7z x -si -ttar -bso0 -bsp0 -o\"$1\"", "{archive}",
                "{folder}"},
            {.modeMask = 0}},
    };
    return readers;
}

std::vector<std::string> complaintsOf(
    const std::vector<ForeignReader>& readers, const std::filesystem::path& archive)
{
    std::vector<std::string> all;
    for (const ForeignReader& reader : readers) {
        for (const std::string& complaint : complaints(reader, reader.test, archive))
            all.push_back(complaint);
    }
    return all;
}

std::vector<std::string> extractionFaults(
    const ForeignReader& reader, const std::filesystem::path& archive, const TreeSnapshot& expected)
{
    const TestFolder folder;
    std::vector<std::string> faults = complaints(reader, reader.extract, archive, folder.path());
    for (const std::string& difference :
        differences(expected, snapshot(folder.path()), reader.tolerance))
        faults.push_back(reader.name + ": " + difference);
    return faults;
}

} // namespace support
