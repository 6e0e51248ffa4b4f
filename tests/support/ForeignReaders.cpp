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

RunResult runReader(std::vector<std::string> command, const std::filesystem::path& archive,
    const std::filesystem::path& folder)
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
    const char* const path = std::getenv("PATH");
    const std::string searchPath = std::string("PATH=") + (path ? path : "");
    return run(command,
        {.environment = {{searchPath, "LC_ALL=C.UTF-8"}}, .timeout = std::chrono::minutes(4)});
}

std::string saidBy(const ForeignReader& reader, const RunResult& result)
{
    return reader.name + " ended with " + std::to_string(result.status) + ": " + result.err
        + result.out.substr(0, 2000);
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
        {"python",
            {"python3", "-c",
                "import sys, zipfile; sys.exit(zipfile.ZipFile(sys.argv[1]).testzip())",
                "{archive}"},
            {"python3", "-m", "zipfile", "-e", "{archive}", "{folder}"},
            {.modeMask = 0, .seconds = -1, .linksAsFiles = true}},
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
        {"python",
            {"python3", "-c", "import sys, tarfile; tarfile.open(sys.argv[1]).getmembers()",
                "{archive}"},
            {"python3", "-c",
                "import sys, tarfile; tarfile.open(sys.argv[1]).extractall(sys.argv[2])",
                "{archive}", "{folder}"},
            {}},
    };
    return readers;
}

std::vector<std::string> complaintsOf(
    const std::vector<ForeignReader>& readers, const std::filesystem::path& archive)
{
    std::vector<std::string> complaints;
    for (const ForeignReader& reader : readers) {
        const RunResult result = runReader(reader.test, archive, {});
        if (result.status != 0)
            complaints.push_back(saidBy(reader, result));
    }
    return complaints;
}

std::vector<std::string> extractionFaults(
    const ForeignReader& reader, const std::filesystem::path& archive, const TreeSnapshot& expected)
{
    const TestFolder folder;
    const RunResult result = runReader(reader.extract, archive, folder.path());
    std::vector<std::string> faults
        = differences(expected, snapshot(folder.path()), reader.tolerance);
    for (std::string& fault : faults)
        fault.insert(0, reader.name + ": ");
    if (result.status != 0)
        faults.push_back(saidBy(reader, result));
    return faults;
}

} // namespace support
