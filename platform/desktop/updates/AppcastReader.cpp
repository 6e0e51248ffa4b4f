#include "platform/desktop/updates/AppcastReader.h"

#include <QStringView>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>

using AppcastReader::Item;

namespace
{

struct Field {
    const char16_t* name;
    QString Item::*text;
};

constexpr auto elements = std::to_array<Field>({
    {u"version", &Item::version},
    {u"shortVersionString", &Item::shortVersionString},
    {u"link", &Item::link},
    {u"description", &Item::description},
    {u"releaseNotesLink", &Item::releaseNotesLink},
    {u"os", &Item::os},
    {u"channel", &Item::channel},
});

// Older feeds have these on the enclosure; an element of the item counts more.
constexpr auto enclosureAttributes = std::to_array<Field>({
    {u"url", &Item::enclosureURL},
    {u"version", &Item::version},
    {u"shortVersionString", &Item::shortVersionString},
    {u"os", &Item::os},
});

template <typename Fields> QString Item::*fieldNamed(const Fields& fields, QStringView name)
{
    const auto found = std::find_if(fields.begin(), fields.end(),
        [&](const Field& field) { return name == QStringView(field.name); });
    return found == fields.end() ? nullptr : found->text;
}

QString textOfElement(QXmlStreamReader& xml)
{
    return xml.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
}

void readEnclosure(const QXmlStreamAttributes& attributes, Item& enclosure)
{
    for (const QXmlStreamAttribute& attribute : attributes)
        if (QString Item::*const text = fieldNamed(enclosureAttributes, attribute.name()))
            enclosure.*text = attribute.value().trimmed().toString();
}

Item readItem(QXmlStreamReader& xml)
{
    Item item;
    Item enclosure;
    while (xml.readNextStartElement()) {
        if (QString Item::*const text = fieldNamed(elements, xml.name())) {
            const QString found = textOfElement(xml);
            if ((item.*text).isEmpty()) // other vocabularies have elements of the same names
                item.*text = found;
            continue;
        }
        if (xml.name() == u"enclosure")
            readEnclosure(xml.attributes(), enclosure);
        item.isCritical |= xml.name() == u"criticalUpdate";
        xml.skipCurrentElement();
    }
    for (const Field& field : enclosureAttributes)
        if ((item.*field.text).isEmpty())
            item.*field.text = enclosure.*field.text;
    return item;
}

std::vector<Item> readChannel(QXmlStreamReader& xml)
{
    std::vector<Item> items;
    QString link;
    while (xml.readNextStartElement()) {
        if (xml.name() == u"item")
            items.push_back(readItem(xml));
        else if (xml.name() == u"link" && xml.namespaceUri().isEmpty())
            link = textOfElement(xml);
        else
            xml.skipCurrentElement();
    }
    for (Item& item : items)
        if (item.link.isEmpty())
            item.link = link;
    return items;
}

// Whether what comes first, but for comments and the like, is the root of a feed.
bool readRoot(QXmlStreamReader& xml)
{
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::DTD || token == QXmlStreamReader::StartElement)
            return xml.name() == u"rss" && token == QXmlStreamReader::StartElement;
    }
    return false;
}

bool isDigit(QChar unit)
{
    return unit >= u'0' && unit <= u'9';
}

// A part of a version: a number, a word or a "~".
struct Part {
    enum Kind { tilde, word, number } kind = number;
    QString text = {}; // of a number without leading zeros
};

std::vector<Part> partsOf(const QString& version)
{
    std::vector<Part> parts;
    const auto takeWhile = [&](qsizetype& index, auto isMember) {
        const qsizetype start = index;
        while (index < version.size() && isMember(version[index]))
            ++index;
        return version.sliced(start, index - start);
    };
    for (qsizetype index = 0; index < version.size();) {
        const QChar unit = version[index];
        if (isDigit(unit)) {
            (void)takeWhile(index, [](QChar each) { return each == u'0'; });
            parts.push_back({Part::number, takeWhile(index, isDigit)});
        } else if (unit.isLetter()) {
            const QString word = takeWhile(index, [](QChar each) { return each.isLetter(); });
            parts.push_back({Part::word, word.toLower()});
        } else {
            if (unit == u'~')
                parts.push_back({Part::tilde});
            ++index;
        }
    }
    return parts;
}

int compareParts(const Part& first, const Part& second)
{
    if (first.kind != second.kind)
        return first.kind < second.kind ? -1 : 1;
    if (first.kind == Part::number && first.text.size() != second.text.size())
        return first.text.size() < second.text.size() ? -1 : 1;
    return first.text.compare(second.text);
}

} // namespace

std::optional<std::vector<Item>> AppcastReader::read(const QByteArray& bytes)
{
    QXmlStreamReader xml(bytes);
    if (bytes.size() > largestFeedInBytes || !readRoot(xml))
        return std::nullopt;
    std::optional<std::vector<Item>> items; // of the first channel
    while (xml.readNextStartElement()) {
        if (xml.name() == u"channel" && !items)
            items = readChannel(xml);
        else
            xml.skipCurrentElement();
    }
    while (!xml.atEnd())
        xml.readNext(); // what stands after the root may still be wrong
    return xml.hasError() ? std::nullopt : items;
}

const Item* AppcastReader::newestItem(const std::vector<Item>& items)
{
    const Item* newest = nullptr;
    for (const Item& item : items) {
        const bool isForThisSystem
            = item.os.isEmpty() || item.os.compare(u"linux", Qt::CaseInsensitive) == 0;
        if (isForThisSystem && item.channel.isEmpty() && !item.version.isEmpty()
            && (!newest || compareVersions(item.version, newest->version) > 0))
            newest = &item;
    }
    return newest;
}

int AppcastReader::compareVersions(const QString& first, const QString& second)
{
    const std::vector<Part> left = partsOf(first);
    const std::vector<Part> right = partsOf(second);
    const Part end; // like the number 0, which has no digits left
    for (std::size_t index = 0; index < std::max(left.size(), right.size()); ++index) {
        const int order = compareParts(
            index < left.size() ? left[index] : end, index < right.size() ? right[index] : end);
        if (order != 0)
            return order;
    }
    return 0;
}
