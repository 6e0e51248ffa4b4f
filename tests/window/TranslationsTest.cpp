#include "app/window/Translations.h"

#include "app/window/AdvertTextView.h"
#include "app/window/Manual.h"
#include "platform/desktop/updates/UpdateSheet.h"
#include "tests/window/Program.h"

#include <QAccessible>
#include <QKeySequence>
#include <QMenuBar>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QScrollBar>
#include <QTextDocument>

namespace fs = std::filesystem;

class Language : public Program
{
protected:
    void expectWholeTexts(int fontSize, int captionSize)
    {
        QFont font = QApplication::font();
        font.setPointSize(fontSize);
        QApplication::setFont(font);
        start({{"Window Frame MainWindowAutosave", {}}});
        auto* advert = find<AdvertTextView>("advertTextView");
        for (const std::int32_t product : {0, 1, 2, 3, 4, 20, 21}) {
            advert->setProductId(product);
            EXPECT_EQ(advert->toolTip().toStdString(), "") << "elided";
        }
        find<QAction>("showAbout")->trigger();
        const auto* credits = find<QTextEdit>("creditsView");
        EXPECT_EQ(credits->verticalScrollBar()->maximum(), 0);
        EXPECT_GT(find<QLabel>("appNameAndVersion")->fontInfo().pointSize(), fontSize);
        QTest::keyClick(credits->window(), Qt::Key_Return);
        EXPECT_FALSE(credits->isVisible()) << "Close is the framed button";
        window().resize(1, 1);
        (void)window().grab();
        EXPECT_EQ(find<QWidget>("destinationPop")->toolTip().toStdString(), "") << "elided";
        const DropView::Caption caption = box().dropHereString();
        EXPECT_EQ(caption.font.pixelSize(), captionSize);
        EXPECT_LT(QFontMetrics(caption.font).horizontalAdvance(caption.text), box().width() - 40);
        for (int height = 120; height < 300; height += 3) {
            box().resize(300, height);
            const auto foot = [&](const QString& hint) {
                box().setHint(hint);
                return box().grab({0, height - 14, 300, 14}).toImage();
            };
            EXPECT_EQ(foot(AppController::hint()), foot({})) << "the hint lies on the outline";
        }
    }
};

static QStringList commandLineOptions()
{
    const auto usage = support::run({PARCELO_PROGRAM, "--help"}).out;
    QStringList options;
    auto found = QRegularExpression("--[a-z-]+").globalMatch(QString::fromStdString(usage));
    while (found.hasNext())
        options.append(found.next().captured());
    EXPECT_GT(options.size(), 5);
    return options;
}

// The page in the language describes every key, preference and option, and no key besides.
static void expectManualOf(const QWidget& window)
{
    const QString page = QString::fromStdString(support::readFile(Manual::page().value()));
    QTextDocument manual;
    manual.setHtml(page);
    QStringList keys;
    for (const QAction* item : window.findChildren<QAction*>())
        keys.append(item->shortcut().toString(QKeySequence::NativeText));
    const QRegularExpression named("<kbd>([^<]+\\+[^<]+)<");
    for (auto found = named.globalMatch(page); found.hasNext();) {
        const QString key = found.next().captured(1);
        EXPECT_TRUE(keys.contains(key)) << key.toStdString();
    }
    QStringList described = commandLineOptions() + keys.filter(QRegularExpression("\\D$"));
    for (const QAbstractButton* control :
        window.findChild<QDialog*>("Preference")->findChildren<QAbstractButton*>())
        described.append(control->text().remove(QRegularExpression("\\(&.\\)|&")));
    for (const QString& text : described)
        EXPECT_TRUE(manual.toPlainText().contains(text)) << text.toStdString();
}

TEST_F(Language, isLoadedCutsNoTextGivesNoLetterTwiceAndNamesEveryControl)
{
    const auto putBack = qScopeGuard([locale = QLocale(), font = QApplication::font()] {
        QLocale::setDefault(locale);
        QApplication::setFont(font);
    });
    for (const auto& [language, title] : {std::pair("en", "Preferences"), {"de", "Einstellungen"},
             {"fr", "Préférences"}, {"es", "Preferencias"}, {"ja", "環境設定"}}) {
        SCOPED_TRACE(language);
        QLocale::setDefault(QLocale(QLatin1String(language)));
        const ::Translations translations;
        expectWholeTexts(18, 32);
        expectWholeTexts(11, 20);
        start(
            {{"Destinations", QStringList{"/1", "/2", "/3", "/4", "/5", "/6", "/7", "/8", "/9"}}});
        drop({Path("/a")});
        (void)waitForSheet("savePanel");
        EXPECT_NE(textOf("previewLabel").substr(0, 5), "TYPE_");
        for (const char* action : {"chooseFiles", "showPreference", "showAbout"})
            find<QAction>(action)->trigger();
        const UpdateSheet update({.version = "2",
                                     .hostVersion = "1",
                                     .whatIsNew = {},
                                     .notesPage = QUrl("http://a/"),
                                     .page = QUrl("http://b/")},
            &window());
        EXPECT_EQ(find<QDialog>("Preference")->windowTitle(), QString(title));

        expectManualOf(window());

        QStringList letters;
        const auto note = [&](const QWidget* form, const QString& text) {
            if (const QKeySequence letter = QKeySequence::mnemonic(text); !letter.isEmpty())
                letters.append(form->objectName() + " " + letter.toString());
        };
        int controls = 0;
        for (const QWidget* form : QApplication::allWidgets()) {
            if (!form->isWindow())
                continue;
            // A menu is a form of its own, the bar a part of the window.
            const auto* bar = form->findChild<QMenuBar*>();
            for (const QAction* item : (bar != nullptr ? bar : form)->actions())
                note(form, item->text());
            for (QWidget* part : form->findChildren<QWidget*>()) {
                if (part->window() != form || part->isHidden())
                    continue;
                note(form, part->property("text").toString());
                const auto* known = QAccessible::queryAccessibleInterface(part);
                if (known == nullptr || (part->focusPolicy() & Qt::TabFocus) == 0
                    || part->objectName() == QLatin1String("qt_scrollarea_viewport"))
                    continue;
                ++controls;
                EXPECT_FALSE(known->text(QAccessible::Name).isEmpty())
                    << form->objectName().toStdString() << part->objectName().toStdString();
            }
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
    const fs::path sources = PARCELO_SOURCE_DIR;
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
        const fs::path original
            = sources / "app/window/translations" / (std::string("parcelo_") + language + ".ts");
        const fs::path updated = folder / original.filename().native();
        fs::copy_file(original, updated);
        EXPECT_EQ(support::run({"/usr/lib/qt6/bin/lupdate", "-locations", "none", sources / "app",
                                   sources / "platform", sources / "shared", "-ts", updated})
                      .status,
            0);
        const auto fresh = QString::fromStdString(support::readFile(updated));
        EXPECT_EQ(
            QString(fresh).replace("&#xa0;", "\u00A0").toStdString(), support::readFile(original));
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
