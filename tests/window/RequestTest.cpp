// Requests, from what is dropped, opened or pasted to the archive in its place.

#include "platform/desktop/panels/SavePanel.h"
#include "tests/support/ZipInspector.h"
#include "tests/window/Program.h"

#include <QComboBox>
#include <QMessageBox>
#include <QProgressBar>

namespace fs = std::filesystem;

class Request : public Program
{
protected:
    Request()
    {
        for (const char* name : {"one.txt", "two.txt", "three.txt"})
            support::writeFile(source / name, std::string("contents of ") + name);
    }

    void waitForTheEnd()
    {
        EXPECT_TRUE(waitFor([&] { return find<QAction>("paste")->isEnabled() && !sheet(); }));
        EXPECT_TRUE(box().files().empty());
    }
    // Types into the sheet that asks for the name of what is mailed.
    void answerWith(const char* name)
    {
        whenSheetIsUp([this, name] {
            QTest::keyClicks(sheet()->focusWidget(), QLatin1String(name));
            QTest::keyClick(sheet(), Qt::Key_Return);
        });
    }

    const Path source = folder.path() / "source";
};

TEST_F(Request, makesTheArchiveBesideTheSourceAsTheSettingsSay)
{
    constexpr int size = 100000;
    support::writeFile(source / "folder/text", support::someText(size));
    support::writeFile(source / "folder/.DS_Store", "what a file manager leaves behind");
    start({{"CompressionLevel", 0}, {"AutoQuit", true}});
    drop({source / "folder", source / "one.txt"});
    endSheet("savePanel", Qt::Key_Return, QStringLiteral("New.v2"));
    for (const char* action : {"chooseFiles", "chooseFolder", "paste", "showPreference"})
        EXPECT_FALSE(find<QAction>(action)->isEnabled()) << action;
    (void)waitForSheet("ProgressWindow");
    EXPECT_TRUE(waitFor([&] { return textOf("statusTF") == "Completed"; }));
    EXPECT_EQ(find<QProgressBar>("progress")->text(), QStringLiteral("100%"));
    waitForTheEnd();
    const Path archive = source / "New.v2.zip";
    EXPECT_EQ(support::inspectZip(archive).names(), (Texts{"folder/", "folder/text", "one.txt"}))
        << "without what only a file manager needs";
    EXPECT_GT(fs::file_size(archive), size) << "by the level, nothing is compressed";
    EXPECT_EQ(workspace.revealed, std::vector<Path>{archive});
    QTest::qWait(1000); // it would quit 0.8 s after the sheet has gone
    EXPECT_FALSE(hasQuit) << "no documents were opened with its icon";
}

TEST_F(Request, takesANameAsItStandsAndAsksBeforeItReplaces)
{
    fs::create_directory(source / "folder");
    for (const char* older : {"a \"b\" c.zip", "Report.zip"})
        support::writeFile(source / older, "an older file");
    // Dropped, whether its extension is kept, the proposal; typed instead, its file (none: the
    // panel stays), whether it asks.
    using Text = const char*;
    const std::tuple<Text, bool, Text, Text, Text, bool> cases[] = {
        {"one.txt", false, "one", "a \"b\" c", "a \"b\" c.zip", true},
        {"one.txt", true, "one.txt", "Report.ZIP", "Report.zip", true},
        {".bashrc", false, ".bashrc", "New.tar", "New.tar.zip", false},
        {"folder", false, "folder", "folder", "folder.zip", false},
        {"folder", false, "folder", "...zip", nullptr, false},
        {"folder", false, "folder", ".zip", nullptr, false},
    };
    bool hasAsked = false;
    start();
    for (const auto& [dropped, keeps, proposed, typed, file, asks] : cases) {
        SCOPED_TRACE(typed);
        store("KeepExtensionForDefaultName", keeps);
        drop({source / dropped});
        auto* panel = qobject_cast<SavePanel*>(waitForSheet("savePanel"));
        EXPECT_EQ(find<QLineEdit>("fileNameEdit")->text(), QLatin1String(proposed));
        find<QLineEdit>("fileNameEdit")->setText(QLatin1String(typed));
        Path chosen; // instead of making it
        panel->beginSheetModalForWindow(&window(), [&](int, const Path& path) { chosen = path; });
        hasAsked = false;
        QTimer::singleShot(0, panel, [&] {
            auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if ((hasAsked = question != nullptr))
                question->button(QMessageBox::Yes)->click();
        });
        QTest::keyClick(panel, Qt::Key_Return);
        EXPECT_EQ(hasAsked, asks);
        EXPECT_EQ(panel->isVisible(), file == nullptr);
        EXPECT_EQ(chosen, file == nullptr ? Path() : source / file);
        panel->reject();
    }
}

TEST_F(Request, putsDocumentsOpenedTogetherIntoOneArchiveAndQuits)
{
    start({{"RevealWhenComplete", false}, {"AutoQuit", true}},
        {source / "one.txt", source / "two.txt", source / "three.txt"});
    (void)waitForSheet("savePanel");
    QTest::keyClick(find<QComboBox>("typePop"), Qt::Key_Down);
    EXPECT_EQ(stored("ArchiveType").toInt(), ArchiveTypeMacZip);
    endSheet("savePanel", Qt::Key_Return);
    (void)waitForSheet("ProgressWindow");
    waitForTheEnd();
    EXPECT_EQ(support::inspectZip(source / "Untitled.zip").names(),
        (Texts{"Untitled/", "Untitled/one.txt", "Untitled/three.txt", "Untitled/two.txt"}));
    EXPECT_TRUE(workspace.revealed.empty());
    EXPECT_TRUE(waitFor([&] { return hasQuit; }));
}

TEST_F(Request, mailsUnderTheNameThatTheSheetAsksFor)
{
    start({{"SelectedDestination", DestinationTagEmail}});
    const Path archive = controller().tmpFolder() / "Week 12.zip";
    support::writeFile(archive, "an older file");

    // The program waits for this sheet, so that what happens in it is told in advance.
    bool hasAsked = false;
    whenSheetIsUp([&] {
        hasAsked = true;
        auto* name = find<QLineEdit>("nameField");
        EXPECT_EQ(name->text(), QStringLiteral("one"));
        name->clear();
        EXPECT_FALSE(find<QPushButton>("confirmButton")->isEnabled());
        name->insert(QStringLiteral("../x") + QStringLiteral("ü").repeated(300));
        EXPECT_EQ(name->text(), QStringLiteral("..-x") + QStringLiteral("ü").repeated(123));
        QTest::keyClick(sheet(), Qt::Key_Escape);
    });
    drop({source / "one.txt"});
    EXPECT_TRUE(waitFor([&] { return hasAsked && !sheet(); }));
    EXPECT_EQ(box().files().size(), 1U) << "what was dropped stays";

    answerWith("Week 12");
    drop({source / "two.txt"});
    (void)waitForSheet("ProgressWindow");
    waitForTheEnd();
    EXPECT_EQ(composer.mailed, std::vector<Path>{archive});
    EXPECT_EQ(support::inspectZip(archive).names(), Texts{"two.txt"});
}

TEST_F(Request, stopsWhenCancelledAndSaysSo)
{
    support::writeFile(source / "large", "");
    fs::resize_file(source / "large", std::uintmax_t{40} << 30); // takes the tool many seconds
    start();
    drop({source / "large", source / "one.txt"});
    endSheet("savePanel", Qt::Key_Return);
    QDialog* progress = waitForSheet("ProgressWindow");
    EXPECT_TRUE(waitFor([&] { // again: a tool that is about to start misses it
        QTest::keyClick(progress, Qt::Key_Escape);
        return textOf("statusTF") == "Cancelled";
    }));
    EXPECT_TRUE(progress->isVisible()) << "until the job has ended";
    waitForTheEnd();
    EXPECT_EQ(told.size(), 1U) << "nothing could be moved to its place";
    EXPECT_EQ(support::namesIn(source), (Texts{"large", "one.txt", "three.txt", "two.txt"}));
}

TEST_F(Request, tellsWhatKeepsItFromBeginning)
{
    const std::tuple<const char*, int, const char*> cases[] = {
        {"..", ArchiveTypeMacZip, "'..'"},
        {"Demo", ArchiveTypeDiskImage, "/usr/bin/hdiutil"},
    };
    start({{"SelectedDestination", DestinationTagEmail}});
    readMessages();
    for (const auto& [name, type, reason] : cases) {
        store("ArchiveType", type);
        told.clear();
        answerWith(name);
        drop({source / "one.txt"});
        ASSERT_TRUE(waitFor([&] { return !told.empty(); }));
        EXPECT_NE(told.front().find(reason), std::string::npos) << told.front();
        waitForTheEnd();
    }
}

TEST_F(Request, tellsWhatIsLeftOutAndWhatTheDesktopCouldNotDo)
{
    start();
    readMessages();
    const auto nextIs = [&](const std::string& title, const std::string& end) {
        ASSERT_TRUE(waitFor([&] { return !told.empty(); })) << title;
        EXPECT_TRUE(told.front().starts_with(title + "|")) << told.front();
        EXPECT_TRUE(told.front().ends_with("\n" + end)) << told.front();
        told.erase(told.begin());
    };
    drop("text/uri-list", "file:///no/such\r\nsftp://host/far\r\nfile://other/file\r\n");
    endSheet("savePanel");
    nextIs("Not everything can be archived", "sftp://host/far\nfile://other/file");
    drop({source / "one.txt"}); // nothing is told again
    endSheet("savePanel");
    controller().couldNotOpen(std::vector<Path>(9, "/no/such"));
    nextIs("There are no such files", "/no/such\n/no/such\n…");

    const Path archive = source / "one.txt";
    Q_EMIT workspace.couldNotReveal(source / "none.zip"); // of a cancelled request: no word of it
    type(Qt::CTRL | Qt::Key_Comma);
    (void)waitForSheet("Preference");
    Q_EMIT workspace.couldNotReveal(archive);
    EXPECT_TRUE(told.empty()) << "a sheet is up";
    endSheet("Preference");
    nextIs("The archive is made", archive);
    Q_EMIT composer.couldNotAttach(archive);
    nextIs("The message could not be made", archive);
    Q_EMIT composer.attached(archive, false);
    nextIs("Please check the attachment", archive);
}
