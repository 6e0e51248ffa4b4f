#include "app/window/Translations.h"

#include "platform/desktop/updates/UpdateSheet.h"
#include "tests/window/Program.h"

#include <QAccessible>
#include <QKeySequence>
#include <QMenuBar>
#include <QRegularExpression>
#include <QScopeGuard>

using Language = Program;

TEST_F(Language, isLoadedGivesNoLetterTwiceAndNamesEveryControl)
{
    const auto putBack = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
    for (const auto& [language, title] : {std::pair("en", "Preferences"), {"de", "Einstellungen"},
             {"fr", "Préférences"}, {"es", "Preferencias"}, {"ja", "環境設定"}}) {
        SCOPED_TRACE(language);
        QLocale::setDefault(QLocale(QLatin1String(language)));
        const ::Translations translations;
        start();
        drop({"/a"});
        (void)waitForSheet("savePanel");
        EXPECT_NE(textOf("previewLabel").substr(0, 5), "TYPE_");
        for (const char* action : {"showPreference", "showAbout"})
            find<QAction>(action)->trigger();
        const UpdateSheet update({.version = "2",
                                     .hostVersion = "1",
                                     .whatIsNew = {},
                                     .notesPage = QUrl("http://a/"),
                                     .page = QUrl("http://b/")},
            &window());
        EXPECT_EQ(find<QDialog>("Preference")->windowTitle(), QString(title));

        QStringList letters;
        int controls = 0;
        for (const QWidget* form : QApplication::allWidgets()) {
            if (!form->isWindow())
                continue;
            // A menu is a form of its own, the bar a part of the window.
            const auto* bar = form->findChild<QMenuBar*>();
            QStringList texts;
            for (const QAction* item : (bar != nullptr ? bar : form)->actions())
                texts.append(item->text());
            for (QWidget* part : form->findChildren<QWidget*>()) {
                if (part->window() != form || part->isHidden())
                    continue;
                texts.append(part->property("text").toString());
                const auto* known = QAccessible::queryAccessibleInterface(part);
                if (known == nullptr || (part->focusPolicy() & Qt::TabFocus) == 0
                    || part->objectName() == QLatin1String("qt_scrollarea_viewport"))
                    continue;
                ++controls;
                EXPECT_FALSE(known->text(QAccessible::Name).isEmpty())
                    << form->objectName().toStdString() << part->objectName().toStdString();
            }
            for (const QString& text : texts)
                if (const QKeySequence letter = QKeySequence::mnemonic(text); !letter.isEmpty())
                    letters.append(form->objectName() + " " + letter.toString());
        }
        for (const std::initializer_list<const char*>& question :
            {std::initializer_list<const char*>{"&Keep Going", "&Stop and Quit"},
                {"&Keep and Quit", "&Quit Anyway"}, {"&Copy List"}})
            for (const char* text : question)
                letters.append(*question.begin()
                    + QKeySequence::mnemonic(QCoreApplication::translate("AppController", text))
                          .toString());
        EXPECT_GE(letters.size(), 40);
        EXPECT_EQ(letters.removeDuplicates(), 0) << letters.join(", ").toStdString();
        EXPECT_GT(controls, 20);
    }
}

TEST(TranslationFiles, areCompleteAndKeepPlaceholdersAndLineBreaks)
{
    const support::TestFolder folder;
    const std::string sources = PARCELO_SOURCE_DIR;
    const QRegularExpression message("<source>([^<]*)</source>\\s*<translation>([^<]*)<");
    const QRegularExpression mark("%[0-9n%]|\n|&lt;.+?&gt;|&amp;");
    const auto marksOf = [&](const QString& text) {
        std::multiset<QString> marks;
        for (auto found = mark.globalMatch(text); found.hasNext();)
            marks.insert(found.next().captured());
        return marks;
    };
    for (const char* language : {"de", "fr", "es", "ja"}) {
        SCOPED_TRACE(language);
        const std::string name = std::string("parcelo_") + language + ".ts";
        const std::string text = support::readFile(sources + "/app/window/translations/" + name);
        support::writeFile(folder / name, text);
        const auto updated = support::run({"/usr/lib/qt6/bin/lupdate", "-locations", "none",
            sources + "/app", sources + "/platform", sources + "/shared", "-ts", folder / name});
        EXPECT_EQ(updated.status, 0) << updated.err;
        const QString fresh = QString::fromStdString(support::readFile(folder / name));
        EXPECT_EQ(QString(fresh).replace("&#xa0;", "\u00A0").toStdString(), text);
        int count = 0;
        for (auto found = message.globalMatch(fresh); found.hasNext(); ++count) {
            const QRegularExpressionMatch match = found.next();
            EXPECT_FALSE(match.captured(2).isEmpty()) << match.captured(1).toStdString();
            EXPECT_EQ(marksOf(match.captured(2)), marksOf(match.captured(1)))
                << match.captured(2).toStdString();
        }
        EXPECT_EQ(count, fresh.count("<message>")) << "some are unfinished";
        EXPECT_GT(count, 100);
    }
}
