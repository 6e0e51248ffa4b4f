#include "platform/desktop/updates/HTMLText.h"

#include <QStringView>

#include <algorithm>
#include <array>
#include <optional>
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

// The names of characters that texts are likely to have; others stay as they are.
constexpr auto entities = std::to_array<std::pair<QStringView, char32_t>>(
    {{u"lt", U'<'}, {u"gt", U'>'}, {u"quot", U'"'}, {u"apos", U'\''}, {u"nbsp", U' '},
        {u"amp", U'&'}, {u"copy", U'©'}, {u"reg", U'®'}, {u"trade", U'™'}, {u"deg", U'°'},
        {u"middot", U'·'}, {u"bull", U'•'}, {u"hellip", U'…'}, {u"ndash", U'–'}, {u"mdash", U'—'},
        {u"lsquo", U'‘'}, {u"rsquo", U'’'}, {u"sbquo", U'‚'}, {u"ldquo", U'“'}, {u"rdquo", U'”'},
        {u"bdquo", U'„'}, {u"laquo", U'«'}, {u"raquo", U'»'}, {u"times", U'×'}, {u"larr", U'←'},
        {u"rarr", U'→'}, {u"auml", U'ä'}, {u"ouml", U'ö'}, {u"uuml", U'ü'}, {u"Auml", U'Ä'},
        {u"Ouml", U'Ö'}, {u"Uuml", U'Ü'}, {u"szlig", U'ß'}, {u"eacute", U'é'}, {u"egrave", U'è'},
        {u"agrave", U'à'}, {u"ccedil", U'ç'}, {u"ntilde", U'ñ'}, {u"euro", U'€'}});
constexpr qsizetype longestEntity = 10; // with "&" and ";", numbers included

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

// What stands between "&" and ";" at the beginning of the text.
QStringView entityAt(QStringView rest)
{
    const qsizetype end = rest.first(std::min(rest.size(), longestEntity)).indexOf(u';');
    return rest.front() == u'&' && end > 0 ? rest.sliced(1, end - 1) : QStringView();
}

// Nothing for what names no character.
std::optional<char32_t> characterOf(QStringView entity)
{
    const auto named
        = std::ranges::find(entities, entity, [](const auto& each) { return each.first; });
    if (named != entities.end())
        return named->second;
    if (!entity.startsWith(u'#'))
        return std::nullopt;
    const bool isHexadecimal = entity.startsWith(u"#x", Qt::CaseInsensitive);
    bool isNumber = false;
    const char32_t number
        = entity.sliced(isHexadecimal ? 2 : 1).toUInt(&isNumber, isHexadecimal ? 16 : 10);
    const bool isCharacter
        = number != 0 && number <= QChar::LastValidCodePoint && !QChar::isSurrogate(number);
    return isNumber && isCharacter ? std::optional(number) : std::nullopt;
}

// The character at the beginning of the text, an entity decoded, and how long it is there. White
// space is a blank or a line end; what has no shape is nothing.
std::pair<QString, qsizetype> characterAt(QStringView rest)
{
    const QStringView entity = entityAt(rest);
    const auto character = entity.isEmpty() ? std::nullopt : characterOf(entity);
    if (!character)
        return {rest.first(1).toString(), 1};
    QString shown;
    if (QChar::isSpace(*character))
        shown = *character == U'\n' ? u'\n' : u' ';
    else if (QChar::isPrint(*character))
        shown = QString::fromUcs4(&*character, 1);
    return {shown, entity.size() + 2};
}

bool holdsTag(QStringView text)
{
    for (qsizetype at = text.indexOf(u'<'); at >= 0; at = text.indexOf(u'<', at + 1))
        if (beginsTag(text.sliced(at)))
            return true;
    return false;
}

QString withoutEntities(QStringView text)
{
    QString result;
    for (qsizetype index = 0; index < text.size();) {
        const auto [character, size] = characterAt(text.sliced(index));
        result += character;
        index += size;
    }
    return result;
}

} // namespace

QString HTMLText::plainText(const QString& html)
{
    const QStringView text(html);
    if (!holdsTag(text))
        return withoutEntities(text);
    Lines lines;
    for (qsizetype index = 0; index < text.size();) {
        const QStringView rest = text.sliced(index);
        if (rest.front().isSpace()) {
            lines.separate(u' ');
            ++index;
            continue;
        }
        if (!beginsTag(rest)) {
            const auto [character, size] = characterAt(rest);
            lines.append(character);
            index += size;
            continue;
        }
        index += sizeOfInvisible(rest);
        const qsizetype end = text.indexOf(u'>', index);
        if (end < 0)
            break; // cut short: nothing that could be read follows
        appendTag(text.sliced(index, end - index), lines);
        index = end + 1;
    }
    return lines.text();
}
