#include "platform/desktop/HTMLText.h"

#include <QStringView>

#include <algorithm>
#include <array>
#include <utility>

namespace
{

// Do not begin a line. A comment and a declaration have no name.
constexpr auto inlineTags
    = std::to_array<QStringView>({u"", u"script", u"style", u"a", u"abbr", u"b", u"code", u"em",
        u"font", u"i", u"kbd", u"s", u"small", u"span", u"strong", u"sub", u"sup", u"tt", u"u"});

// What begins with the first is left out until the second.
constexpr auto invisible = std::to_array<std::pair<QStringView, QStringView>>(
    {{u"<!--", u"-->"}, {u"<script", u"</script"}, {u"<style", u"</style"}});

constexpr auto entities = std::to_array<std::pair<QStringView, char16_t>>(
    {{u"&lt;", u'<'}, {u"&gt;", u'>'}, {u"&quot;", u'"'}, {u"&apos;", u'\''}, {u"&#39;", u'\''},
        {u"&nbsp;", u' '}, {u"&amp;", u'&'}});

// Puts words together, with one blank or line end between them.
class Lines
{
public:
    void append(QStringView text)
    {
        if (!_text.isEmpty() && _gap != u'\0')
            _text += _gap;
        _gap = u'\0';
        _text += text;
    }
    void separate(QChar gap) { _gap = std::max(_gap, gap == u'\n' ? lineEnd : blank); }
    QString text() const { return QString(_text).replace(lineEnd, u'\n'); }

private:
    // In the order of their weight.
    static constexpr QChar blank = u' ';
    static constexpr QChar lineEnd = u'\u2028';

    QString _text;
    QChar _gap = u'\0';
};

bool beginsTag(QStringView rest)
{
    return rest.size() > 1 && rest[0] == u'<'
        && (rest[1].isLetter() || rest[1] == u'/' || rest[1] == u'!');
}

// How far the invisible goes that begins here; 0 when none does.
qsizetype sizeOfInvisible(QStringView rest)
{
    for (const auto& [begin, end] : invisible) {
        if (!rest.startsWith(begin, Qt::CaseInsensitive))
            continue;
        const qsizetype found = rest.indexOf(end, begin.size(), Qt::CaseInsensitive);
        return found < 0 ? rest.size() : found;
    }
    return 0;
}

// The name that a tag begins with, without its slash.
QStringView tagName(QStringView tag)
{
    const QStringView name = tag.sliced(tag.startsWith(u"</") ? 2 : 1);
    const auto* const end = std::find_if_not(
        name.begin(), name.end(), [](QChar unit) { return unit.isLetterOrNumber(); });
    return name.first(end - name.begin());
}

void appendTag(QStringView tag, Lines& lines)
{
    const QStringView name = tagName(tag);
    const bool isInline = std::any_of(inlineTags.begin(), inlineTags.end(),
        [&](QStringView each) { return name.compare(each, Qt::CaseInsensitive) == 0; });
    if (!isInline)
        lines.separate(u'\n');
    if (name.compare(u"li", Qt::CaseInsensitive) == 0 && !tag.startsWith(u"</")) {
        lines.append(u"\u2022");
        lines.separate(u' ');
    }
}

// The entity or the one unit that the text begins with; how much that was.
qsizetype appendUnit(QStringView rest, Lines& lines)
{
    if (rest.front().isSpace()) {
        lines.separate(u' ');
        return 1;
    }
    if (rest.front() == u'&')
        for (const auto& [name, unit] : entities)
            if (rest.startsWith(name)) {
                lines.append(QStringView(&unit, 1));
                return name.size();
            }
    lines.append(rest.first(1));
    return 1;
}

} // namespace

QString HTMLText::plainText(const QString& html)
{
    const QStringView text(html);
    Lines lines;
    bool hasTags = false;
    for (qsizetype index = 0; index < text.size();) {
        const QStringView rest = text.sliced(index);
        if (!beginsTag(rest)) {
            index += appendUnit(rest, lines);
            continue;
        }
        hasTags = true;
        index += sizeOfInvisible(rest);
        const qsizetype end = text.indexOf(u'>', index);
        if (end < 0)
            break; // cut short: nothing that could be read follows
        appendTag(text.sliced(index, end - index), lines);
        index = end + 1;
    }
    return hasTags ? lines.text() : html;
}
