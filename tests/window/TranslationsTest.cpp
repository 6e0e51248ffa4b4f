#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>
#include <QXmlStreamReader>

#include <map>

#include <gtest/gtest.h>

namespace
{

const std::string sources = PARCELO_SOURCE_DIR;

// The messages of a translation file, by context and source text.
std::map<std::string, QString> messagesIn(const std::string& file)
{
    QFile contents(QString::fromStdString(file));
    EXPECT_TRUE(contents.open(QIODevice::ReadOnly)) << file;
    QXmlStreamReader reader(&contents);
    std::map<std::string, QString> messages;
    QString context;
    QString source;
    while (reader.readNext() != QXmlStreamReader::EndDocument && !reader.hasError()) {
        if (!reader.isStartElement())
            continue;
        if (reader.name() == QLatin1String("name"))
            context = reader.readElementText();
        else if (reader.name() == QLatin1String("source"))
            source = reader.readElementText();
        else if (reader.name() == QLatin1String("translation"))
            messages[context.toStdString() + "|" + source.toStdString()] = reader.readElementText();
    }
    EXPECT_FALSE(reader.hasError()) << file;
    return messages;
}

// What a translation must have in common with its source.
QStringList marksOf(const QString& text)
{
    static const QRegularExpression mark(QStringLiteral("%[0-9n%]|\n|<[^>]+>"));
    QStringList marks;
    for (auto found = mark.globalMatch(text); found.hasNext();)
        marks.append(found.next().captured());
    marks.sort();
    return marks;
}

} // namespace

TEST(Translations, areCompleteAndKeepPlaceholdersAndLineBreaks)
{
    const support::TestFolder folder;
    const std::string fresh = folder / "fresh.ts";
    const auto updated = support::run({"/usr/lib/qt6/bin/lupdate", "-locations", "none",
        sources + "/app", sources + "/platform", sources + "/shared", "-ts", fresh});
    ASSERT_EQ(updated.status, 0) << updated.err;
    const auto wanted = messagesIn(fresh);
    ASSERT_GT(wanted.size(), 100u);
    for (const char* language : {"de", "fr", "es", "ja"}) {
        const auto messages
            = messagesIn(sources + "/app/window/translations/parcelo_" + language + ".ts");
        EXPECT_EQ(messages.size(), wanted.size()) << language;
        for (const auto& [key, unused] : wanted) {
            const auto message = messages.find(key);
            ASSERT_NE(message, messages.end()) << language << " lacks " << key;
            EXPECT_FALSE(message->second.isEmpty()) << language << " leaves out " << key;
            const QString source = QString::fromStdString(key.substr(key.find('|') + 1));
            EXPECT_EQ(marksOf(message->second), marksOf(source)) << language << ": " << key;
            EXPECT_EQ(message->second.contains(QLatin1Char('&')), source.contains(QLatin1Char('&')))
                << language << ": " << key;
        }
    }
    const auto english = messagesIn(sources + "/app/window/translations/parcelo_en.ts");
    for (const auto& [key, unused] : wanted)
        EXPECT_EQ(english.contains(key), key.starts_with("Localizable|")) << key;
}
