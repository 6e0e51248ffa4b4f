#include "platform/desktop/updates/AppcastReader.h"
#include "platform/desktop/updates/HTMLText.h"
#include "tests/fuzz/Fuzzing.h"

#include <QStringList>

#include <algorithm>

using namespace AppcastReader;
using Fuzzing::require;

namespace
{

// Of three versions that are sorted.
void requireOrder(const QString& low, const QString& middle, const QString& high)
{
    const bool isLower = compareVersions(low, middle) < 0;
    require((compareVersions(middle, low) > 0) == isLower, "both ways tell the same");
    require(compareVersions(low, high) <= (isLower ? -1 : 0), "what follows one follows its first");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString text = QString::fromUtf8(bytes);
    require(HTMLText::plainText(text).size() <= text.size(), "plain text is no longer than HTML");
    QStringList lines = text.split(u'\n').mid(0, 3) + QStringList(3);
    std::sort(lines.begin(), lines.begin() + 3,
        [](const QString& one, const QString& other) { return compareVersions(one, other) < 0; });
    requireOrder(lines[0], lines[1], lines[2]);

    const std::vector<Item> items = AppcastReader::read(bytes).value_or(std::vector<Item>());
    const Item* newest = newestItem(items);
    for (const Item& item : items)
        require(!newest || item.version.isEmpty() || !item.os.isEmpty() || !item.channel.isEmpty()
                || compareVersions(item.version, newest->version) <= 0,
            "no version is newer than the newest");
    return 0;
}
