#include "tests/support/ZipInspector.h"

#include "tests/support/Run.h"

#include <sstream>

namespace support
{

std::vector<std::string> ZipReport::names() const
{
    std::vector<std::string> names;
    for (const ZipEntry& entry : entries)
        names.push_back(entry.name);
    return names;
}

ZipReport inspectZip(const std::filesystem::path& archive, std::size_t foreignEntries)
{
    const RunResult result = run({"python3", PARCELO_SOURCE_DIR "/tests/support/inspect_zip.py",
        archive, std::to_string(foreignEntries)});
    if (result.status != 0)
        return {.complaints = {"the inspector failed: " + result.err}};
    std::istringstream fields(result.out);
    const auto text = [&] {
        std::string field;
        std::getline(fields, field, '\0');
        return field;
    };
    const auto number = [&] { return std::stoll(text()); };
    ZipReport report;
    for (auto left = number(); left > 0; --left)
        report.complaints.push_back(text());
    report.comment = text();
    report.hasZip64End = number() != 0;
    while (fields.peek() != std::istringstream::traits_type::eof())
        report.entries.push_back({text(), number(), number() != 0});
    return report;
}

} // namespace support
