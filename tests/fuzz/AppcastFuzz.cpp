#include "platform/desktop/updates/AppcastReader.h"
#include "platform/desktop/updates/HTMLText.h"
#include "tests/fuzz/Fuzzing.h"

#include <QByteArrayList>

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

int signOf(int number)
{
    return number < 0 ? -1 : number > 0 ? 1 : 0;
}

void requireOrder(const QString& first, const QString& second, const QString& third)
{
    const int order = signOf(compareVersions(first, second));
    require(compareVersions(first, first) == 0, "a version equals itself");
    require(order == -signOf(compareVersions(second, first)), "both ways tell the same");
    const int next = signOf(compareVersions(second, third));
    if (order == next || order == 0 || next == 0)
        require(signOf(compareVersions(first, third)) == (order != 0 ? order : next),
            "what follows the next follows the first");
}

void requireNewest(const std::vector<Item>& items)
{
    const Item* newest = AppcastReader::newestItem(items);
    for (const Item& item : items)
        require(!newest || item.version.isEmpty() || !item.os.isEmpty() || !item.channel.isEmpty()
                || compareVersions(item.version, newest->version) <= 0,
            "no version is newer than the newest");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    requireShort(QString::fromUtf8(bytes));
    const auto lines = bytes.split('\n') + QByteArrayList(3);
    requireOrder(
        QString::fromUtf8(lines[0]), QString::fromUtf8(lines[1]), QString::fromUtf8(lines[2]));

    const std::vector<Item> items = AppcastReader::read(bytes).value_or(std::vector<Item>());
    for (const Item& item : items)
        requireShort(item.description);
    for (std::size_t index = 2; index < std::min<std::size_t>(items.size(), 20); ++index)
        requireOrder(items[index - 2].version, items[index - 1].version, items[index].version);
    requireNewest(items);
    return 0;
}
