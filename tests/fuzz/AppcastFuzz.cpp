#include "platform/desktop/updates/AppcastReader.h"
#include "platform/desktop/updates/HTMLText.h"
#include "tests/fuzz/Fuzzing.h"

#include <QStringList>

using namespace AppcastReader;
using Fuzzing::require;

void Fuzzing::test(std::string_view input)
{
    const QByteArray bytes(input.data(), static_cast<qsizetype>(input.size()));
    const QString text = QString::fromUtf8(bytes);
    require(HTMLText::plainText(text).size() <= text.size(), "plain text is no longer than HTML");
    QStringList lines = text.split(u'\n').mid(0, 3) + QStringList(3);
    const auto isLower
        = [&](int one, int other) { return compareVersions(lines[one], lines[other]) < 0; };
    require(!isLower(0, 1) || !isLower(1, 0), "both ways tell the same");
    require(
        !isLower(0, 1) || !isLower(1, 2) || isLower(0, 2), "what follows one follows its first");

    const std::vector<Item> items = AppcastReader::read(bytes).value_or(std::vector<Item>());
    const Item* newest = newestItem(items);
    for (const Item& item : items)
        require(!newest || item.version.isEmpty() || !item.os.isEmpty() || !item.channel.isEmpty()
                || compareVersions(item.version, newest->version) <= 0,
            "no version is newer than the newest");
}
