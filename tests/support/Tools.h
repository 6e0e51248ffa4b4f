// The bundled tools, and runs of them as the program starts them.
#pragma once

#include "tests/support/ForeignReaders.h"
#include "tests/support/Run.h"

namespace support
{

// What the runs of a tool end with, and who reads its archives.
struct Tool {
    std::string name; // zip, tar, ditto
    std::string archiveName;
    int skipped; // made, but something was left out or changed
    int nothingToDo;
    int writeError;
    int cannotCreate;
    int usage;
    int interrupted;
    const std::vector<ForeignReader>& readers;
    const bool makesZips = name != "tar";
};
const Tool& toolNamed(const std::string& name);

struct ToolOptions {
    std::string level = "-6"; // of zip
    unsigned threads = 0; // 0: one per core
    bool leaveOutDsStore = false;
    Names prefix = {}; // the program that starts the tool, with its arguments
    Names environment = {}; // all that the tool gets
    std::string toolsFolder = PARCELO_TOOLS_DIR;
    std::chrono::seconds timeout{60};
    std::string itemFolder = "./"; // how the item's name begins
};

// A run of a tool on one item, from the item's folder: beside the test, or to its end.
RunningProgram start(const Tool& tool, const std::filesystem::path& archive,
    const std::filesystem::path& item, const ToolOptions& options = {});
inline RunResult run(const Tool& tool, const std::filesystem::path& archive,
    const std::filesystem::path& item, const ToolOptions& options = {})
{
    return start(tool, archive, item, options).wait();
}

// The names in `warning: NAME: reason` lines, sorted; any other line as it stands.
Names warnedNames(const RunResult& result);

// How a command begins that has no more rights than a file's owner.
inline const Names asOwner = {"sh", "-c", R"sh([ "$(id -u)" != 0 ] || exec setpriv \
    --bounding-set=-dac_override,-dac_read_search "$0" "$@"; exec "$0" "$@")sh"};

// Everything is to be tried, however long it takes, and not a sample of it: PARCELO_ALL_TESTS is 1.
bool isFullSweep();

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true; // slower, and with an address space of its own
#else
inline constexpr bool isSanitized = false;
#endif

} // namespace support
