#include "tests/support/ZipInspector.h"

#include "tests/support/Run.h"

#include <sstream>

namespace support
{

ZipReport inspectZip(const std::filesystem::path& archive, std::size_t foreignEntries)
{
    const RunResult result
        = run({"env", "-u", "TZ", "python3", PARCELO_SOURCE_DIR "/tests/support/inspect_zip.py",
            archive, std::to_string(foreignEntries)});
    ZipReport report;
    if (result.status != 0)
        report.complaints = {"the inspector failed: " + result.err};
    std::istringstream fields(result.out);
    for (std::string kind, text; std::getline(fields, kind, '\0');) {
        std::getline(fields, text, '\0');
        if (kind == "zip64 end")
            report.hasZip64End = true;
        else if (kind == "comment")
            report.comment = text;
        else
            (kind == "entry" ? report.entries : report.complaints).push_back(text);
    }
    return report;
}

} // namespace support
