#include "tests/support/ForeignReaders.h"

#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

namespace support
{

namespace
{

using Lines = std::vector<std::string>;

// Nothing to complain of, or one line. In a locale without UTF-8 some of them skip names.
Lines complaints(const ForeignReader& reader, const std::string& command,
    const std::filesystem::path& archive, const std::string& folder = {})
{
    const RunResult result = run({"env", "LC_ALL=C.UTF-8", "sh", "-c", command, archive, folder},
        {.timeout = std::chrono::minutes(4)});
    if (result.status == 0)
        return {};
    return {reader.name + " ended with " + std::to_string(result.status) + ": " + result.err
        + result.out.substr(0, 2000)};
}

} // namespace

const std::vector<ForeignReader>& zipReaders()
{
    static const std::vector<ForeignReader> readers = {
        {"unzip", R"(unzip -tqq "$0")", R"(unzip -qq -o -^ -K "$0" -d "$1")"},
        {"7z", R"(7z t -bso0 -bsp0 "$0")", R"(7z x -y -bso0 -bsp0 "$0" -o"$1")", {.modeMask = 0}},
        {"bsdtar", R"(bsdtar -xOf "$0" > /dev/null)", R"(bsdtar -xpf "$0" -C "$1")"},
    };
    return readers;
}

const std::vector<ForeignReader>& tarReaders()
{
    static const std::vector<ForeignReader> readers = {
        {"tar", R"(tar -tzf "$0")", R"(tar -xpzf "$0" -C "$1")"},
        {"bsdtar", R"(bsdtar -tf "$0")", R"(bsdtar -xpf "$0" -C "$1")"},
        {"7z", R"(7z x -so "$0" | 7z t -si -ttar -bso0 -bsp0)",
            R"(7z x -so "$0" | 7z x -si -ttar -bso0 -bsp0 -o"$1")", {.modeMask = 0}},
    };
    return readers;
}

Lines complaintsOf(const std::vector<ForeignReader>& readers, const std::filesystem::path& archive)
{
    Lines all;
    for (const ForeignReader& reader : readers)
        std::ranges::move(complaints(reader, reader.test, archive), std::back_inserter(all));
    return all;
}

Lines extractionFaults(
    const ForeignReader& reader, const std::filesystem::path& archive, const TreeSnapshot& expected)
{
    const TestFolder folder;
    Lines faults = complaints(reader, reader.extract, archive, folder.path());
    for (const std::string& difference :
        differences(expected, snapshot(folder.path()), reader.tolerance))
        faults.push_back(reader.name + ": " + difference);
    return faults;
}

} // namespace support
