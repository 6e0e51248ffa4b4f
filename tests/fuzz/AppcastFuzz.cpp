#include "platform/desktop/updates/AppcastReader.h"
#include "platform/desktop/updates/HTMLText.h"
#include "tests/fuzz/Fuzzing.h"

#include <QStringList>

#include <algorithm>

using AppcastReader::compareVersions;
using AppcastReader::Item;
using Fuzzing::require;

namespace
{

void requireShort(const QString& html)
{
    require(HTMLText::plainText(html).size() <= html.size(), "plain text is no longer than HTML");
}

// Of three versions that are sorted.
void requireOrder(const QString& low, const QString& middle, const QString& high)
{
    const bool isLower = compareVersions(low, middle) < 0;
    require(compareVersions(low, low) == 0, "a version equals itself");
    require((compareVersions(middle, low) > 0) == isLower, "both ways tell the same");
    require(compareVersions(low, high) <= (isLower ? -1 : 0), "what follows one follows its first");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    requireShort(QString::fromUtf8(bytes));
    QStringList lines = QString::fromUtf8(bytes).split(u'\n').mid(0, 3) + QStringList(3);
    std::sort(lines.begin(), lines.begin() + 3,
        [](const QString& one, const QString& other) { return compareVersions(one, other) < 0; });
    requireOrder(lines[0], lines[1], lines[2]);

    const std::vector<Item> items = AppcastReader::read(bytes).value_or(std::vector<Item>());
    const Item* newest = AppcastReader::newestItem(items);
    for (const Item& item : items) {
        requireShort(item.description);
        require(!newest || item.version.isEmpty() || !item.os.isEmpty() || !item.channel.isEmpty()
                || compareVersions(item.version, newest->version) <= 0,
            "no version is newer than the newest");
    }
    return 0;
}
