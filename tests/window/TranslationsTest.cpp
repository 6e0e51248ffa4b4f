#include "app/window/Translations.h"

#include "tests/support/Run.h"
#include "tests/window/Program.h"

#include <QAbstractButton>
#include <QFile>
#include <QKeySequence>
#include <QMenuBar>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QXmlStreamReader>

#include <map>

#include <gtest/gtest.h>

namespace
{

const std::string sources = PARCELO_SOURCE_DIR;

std::string fileOf(const std::string& language)
{
    return sources + "/app/window/translations/parcelo_" + language + ".ts";
}

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

// The letters that lead to something with Alt, each with what it leads to.
using Letters = std::multimap<std::string, std::string>;

void add(Letters& letters, const QString& text)
{
    if (const QKeySequence letter = QKeySequence::mnemonic(text); !letter.isEmpty())
        letters.emplace(letter.toString().toStdString(), text.toStdString());
}

Letters lettersOf(const QWidget* form)
{
    Letters letters;
    for (const auto* label : form->findChildren<QLabel*>())
        if (label->window() == form && label->buddy() != nullptr && !label->isHidden())
            add(letters, label->text());
    for (const auto* button : form->findChildren<QAbstractButton*>())
        if (button->window() == form && !button->isHidden())
            add(letters, button->text());
    // The menu bar is a part of the window, a menu a form of its own.
    const auto* bar = form->findChild<QMenuBar*>();
    for (const QAction* item : (bar != nullptr ? bar : form)->actions())
        add(letters, item->text());
    return letters;
}

} // namespace

class Language : public Program, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(Language, isLoadedAndGivesNoLetterTwiceInOneForm)
{
    const auto putBack = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
    QLocale::setDefault(QLocale(QLatin1String(GetParam())));
    const ::Translations translations;
    start();
    drop({"/a"});
    (void)waitForSheet("savePanel");
    EXPECT_FALSE(find<QLabel>("previewLabel")->text().startsWith(QLatin1String("TYPE_")));
    for (const char* action : {"showPreference", "showAbout"})
        find<QAction>(action)->trigger();
    if (GetParam() != std::string("en")) {
        EXPECT_EQ(find<QDialog>("Preference")->windowTitle(),
            messagesIn(fileOf(GetParam())).at("Preference|Preferences"));
    }

    int forms = 0;
    int known = 0;
    for (const QWidget* form : QApplication::allWidgets()) {
        if (!form->isWindow())
            continue;
        ++forms;
        const Letters letters = lettersOf(form);
        known += int(letters.size());
        for (const auto& [letter, text] : letters)
            EXPECT_EQ(letters.count(letter), 1U)
                << form->objectName().toStdString() << ": " << letter << " for " << text;
    }
    EXPECT_GE(forms, 10); // six windows and dialogs, four menus
    EXPECT_GE(known, 40);
}

INSTANTIATE_TEST_SUITE_P(Each, Language, ::testing::Values("en", "de", "fr", "es", "ja"));

TEST(TranslationFiles, areCompleteAndKeepPlaceholdersAndLineBreaks)
{
    const support::TestFolder folder;
    const std::string fresh = folder / "fresh.ts";
    const auto updated = support::run({"/usr/lib/qt6/bin/lupdate", "-locations", "none",
        sources + "/app", sources + "/platform", sources + "/shared", "-ts", fresh});
    ASSERT_EQ(updated.status, 0) << updated.err;
    const auto wanted = messagesIn(fresh);
    ASSERT_GT(wanted.size(), 100u);
    for (const char* language : {"de", "fr", "es", "ja"}) {
        const auto messages = messagesIn(fileOf(language));
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
    const auto english = messagesIn(fileOf("en"));
    for (const auto& [key, unused] : wanted)
        EXPECT_EQ(english.contains(key), key.starts_with("Localizable|")) << key;
}
