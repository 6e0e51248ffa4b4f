// Requests, from what is dropped, opened or pasted to the archive in its place.

#include "platform/desktop/panels/SavePanel.h"
#include "platform/desktop/panels/Sheets.h"
#include "tests/support/Files.h"
#include "tests/support/ZipInspector.h"
#include "tests/window/Drag.h"
#include "tests/window/Program.h"

#include <QClipboard>
#include <QComboBox>
#include <QMimeData>
#include <QProgressBar>

#include <unistd.h>

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class Request : public Program
{
protected:
    Request()
    {
        for (const char* name : {"one.txt", "two.txt", "three.txt"})
            support::writeFile(source / name, std::string("contents of ") + name);
    }

    QLineEdit* nameIn(const QDialog* panel)
    {
        return panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    }

    bool isIdle()
    {
        return find<QAction>("paste")->isEnabled() && Sheets::attachedSheet(&window()) == nullptr;
    }
    void waitForTheEnd()
    {
        EXPECT_TRUE(waitFor([&] { return isIdle(); }));
        EXPECT_TRUE(box().files().empty());
    }

    // From now on every message is noted, as its title and text, and put away.
    void readMessages()
    {
        QObject::connect(&_reader, &QTimer::timeout, &window(), [this] {
            QDialog* sheet = Sheets::attachedSheet(&window());
            if (sheet == nullptr || sheet->findChild<QLabel*>("alertTitle") == nullptr)
                return;
            told.push_back(textOf("alertTitle") + "|" + textOf("alertMessage"));
            sheet->reject();
        });
        _reader.start(5);
    }

    const Path source = folder.path() / "source";
    std::vector<std::string> told;

private:
    QTimer _reader;
};

TEST_F(Request, proposesTheNameOfASingleItem)
{
    using Files = std::vector<Path>;
    const std::tuple<Files, bool, const char*> cases[] = {
        {Files{"/a/Report.pdf"}, false, "Report"},
        {Files{"/a/Report.pdf"}, true, "Report.pdf"},
        {Files{"/a/.bashrc"}, false, ".bashrc"},
        {Files{"/a/b", "/a/c", "/a/d"}, false, "Untitled"},
    };
    start();
    for (const auto& [files, keepsExtension, name] : cases) {
        store("KeepExtensionForDefaultName", keepsExtension);
        drop(files);
        EXPECT_EQ(nameIn(waitForSheet("savePanel"))->text().toStdString(), name);
        endSheet("savePanel");
        EXPECT_TRUE(box().files().empty());
    }
}

TEST_F(Request, makesTheArchiveBesideTheSourceAsTheSettingsSay)
{
    constexpr int size = 100000;
    support::writeFile(source / "folder/text", support::someText(size));
    support::writeFile(source / "folder/.DS_Store", "what a file manager leaves behind");
    support::writeFile(source / "Untitled.v2.zip", "an older file");
    start({{"CompressionLevel", 0}, {"AutoQuit", true}});
    drop({source / "folder", source / "one.txt"});
    QDialog* panel = waitForSheet("savePanel");
    QTest::keyClicks(panel->focusWidget(), QStringLiteral("New.v2")); // replaces the proposal
    QTest::keyClick(panel, Qt::Key_Return);
    for (const char* action : {"chooseFiles", "chooseFolder", "paste", "showPreference"})
        EXPECT_FALSE(find<QAction>(action)->isEnabled()) << action;
    (void)waitForSheet("ProgressWindow");
    EXPECT_TRUE(waitFor([&] { return textOf("statusTF") == "Completed"; }));
    const auto* bar = find<QProgressBar>("progress");
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_GE(bar->maximum(), 3);
    waitForTheEnd();
    const Path archive = source / "New.v2.zip";
    EXPECT_EQ(support::inspectZip(archive).names(), (Names{"folder/", "folder/text", "one.txt"}))
        << "without what only a file manager needs";
    EXPECT_GT(fs::file_size(archive), size) << "by the level, nothing is compressed";
    EXPECT_EQ(support::readFile(source / "Untitled.v2.zip"), "an older file");
    EXPECT_EQ(workspace.revealed, std::vector<Path>{archive});
    EXPECT_EQ(stored("UsageCount").toInt(), 1);
    QTest::qWait(1000); // it would quit 0.8 s after the sheet has gone
    EXPECT_FALSE(hasQuit()) << "no documents were opened with its icon";
}

TEST_F(Request, takesANameAsItStandsAndAsksBeforeItReplaces)
{
    fs::create_directory(source / "folder");
    for (const char* older : {"b.zip", "a \"b\" c.zip", "Report.zip"})
        support::writeFile(source / older, "an older file");
    // Typed, its file (none: the panel stays), whether it asks.
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"a \"b\" c", "a \"b\" c.zip", true},
        {"Report.ZIP", "Report.zip", true},
        {"New.tar", "New.tar.zip", false},
        {"folder", "folder.zip", false},
        {"...zip", nullptr, false},
        {".zip", nullptr, false},
    };
    start();
    for (const auto& [typed, file, asks] : cases) {
        SCOPED_TRACE(typed);
        drop({source / "one.txt"});
        auto* panel = qobject_cast<SavePanel*>(waitForSheet("savePanel"));
        nameIn(panel)->setText(QLatin1String(typed));
        Path chosen; // instead of making it
        panel->beginSheetModalForWindow(&window(), [&](int, const Path& path) { chosen = path; });
        EXPECT_EQ(isAskedBy([&] { QTest::keyClick(panel, Qt::Key_Return); }), asks);
        EXPECT_EQ(panel->isVisible(), file == nullptr);
        EXPECT_EQ(chosen, file == nullptr ? Path() : source / file);
        panel->reject();
    }
}

TEST_F(Request, putsDocumentsOpenedTogetherIntoOneArchiveAndQuits)
{
    start({{"RevealWhenComplete", false}, {"AutoQuit", true}},
        {source / "one.txt", source / "two.txt", source / "three.txt"});
    QDialog* panel = waitForSheet("savePanel");
    const std::string explanation = textOf("previewLabel");
    QTest::keyClick(find<QComboBox>("typePop"), Qt::Key_Down);
    EXPECT_EQ(stored("ArchiveType").toInt(), ArchiveTypeMacZip);
    EXPECT_NE(textOf("previewLabel"), explanation);
    QTest::keyClick(nameIn(panel), Qt::Key_Return);
    waitForSheet("ProgressWindow");
    waitForTheEnd();
    EXPECT_EQ(support::inspectZip(source / "Untitled.zip").names(),
        (Names{"Untitled/", "Untitled/one.txt", "Untitled/three.txt", "Untitled/two.txt"}));
    EXPECT_TRUE(workspace.revealed.empty());
    find<QAction>("showPreference")->trigger();
    QTest::qWait(1000); // it would quit 0.8 s after the progress sheet has gone
    EXPECT_FALSE(hasQuit()) << "a sheet is up";
    endSheet("Preference");
    EXPECT_TRUE(waitFor([&] { return hasQuit(); }));
}

TEST_F(Request, mailsUnderTheNameThatTheSheetAsksFor)
{
    const Path taken = fs::temp_directory_path() / ("Parcelo_" + std::to_string(::getpid()));
    fs::remove_all(taken);
    fs::create_directory_symlink(source, taken);
    start({{"SelectedDestination", DestinationTagEmail}});
    const Path scratch = controller().tmpFolder();
    EXPECT_TRUE(fs::remove(taken)) << "where another has taken the place, one of its own";
    EXPECT_EQ(fs::status(scratch).permissions(), fs::perms::owner_all);
    support::writeFile(scratch / "Week 12.zip", "an older file");

    // The program waits for this sheet, so that what happens in it is told in advance.
    bool hasAsked = false;
    whenSheetIsUp([&](QDialog* sheet) {
        hasAsked = true;
        auto* name = sheet->findChild<QLineEdit*>(QStringLiteral("nameField"));
        EXPECT_EQ(name->text(), QStringLiteral("one"));
        name->clear();
        EXPECT_FALSE(sheet->findChild<QPushButton*>(QStringLiteral("confirmButton"))->isEnabled());
        QTest::keyClick(sheet, Qt::Key_Escape);
    });
    drop({source / "one.txt"});
    EXPECT_TRUE(waitFor([&] { return hasAsked && isIdle(); }));
    EXPECT_EQ(box().files().size(), 1U) << "what was dropped stays";

    whenSheetIsUp([](QDialog* sheet) {
        QTest::keyClicks(sheet->focusWidget(), QStringLiteral("Week 12"));
        QTest::keyClick(sheet, Qt::Key_Return);
    });
    drop({source / "two.txt"});
    waitForSheet("ProgressWindow");
    waitForTheEnd();
    EXPECT_EQ(composer.mailed, std::vector<Path>{scratch / "Week 12.zip"});
    EXPECT_EQ(support::inspectZip(scratch / "Week 12.zip").names(), Names{"two.txt"});
    EXPECT_TRUE(workspace.revealed.empty());
    EXPECT_EQ(stored("EmailCount").toInt(), 1);
}

TEST_F(Request, makesAFileNameOfWhateverIsTyped)
{
    start();
    auto* field = find<QLineEdit>("nameField");
    const auto times
        = [](const char* letter, int count) { return QString(letter).repeated(count); };
    const std::pair<QString, QString> cases[] = {{"../../etc/passwd", "..-..-etc-passwd"},
        {times("x", 300), times("x", 251)}, {times("ü", 300), times("ü", 125)}};
    for (const auto& [typed, name] : cases) {
        field->clear();
        field->insert(typed);
        EXPECT_EQ(field->text(), name);
    }
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
    EXPECT_EQ(alerts.size(), 1U) << "nothing could be moved to its place";
    EXPECT_EQ(support::namesIn(source), (Names{"large", "one.txt", "three.txt", "two.txt"}));
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
        whenSheetIsUp([name = name](QDialog* sheet) {
            QTest::keyClicks(sheet->focusWidget(), QLatin1String(name));
            QTest::keyClick(sheet, Qt::Key_Return);
        });
        drop({source / "one.txt"});
        ASSERT_TRUE(waitFor([&] { return !told.empty(); }));
        EXPECT_NE(told.front().find(reason), std::string::npos) << told.front();
        waitForTheEnd();
    }
    EXPECT_TRUE(composer.mailed.empty());
}

TEST_F(Request, tellsWhatIsLeftOutAndWhatTheDesktopCouldNotDo)
{
    start();
    readMessages();
    std::size_t count = 0;
    const auto nextIs = [&](const std::string& title, const std::string& end) {
        ASSERT_TRUE(waitFor([&] { return told.size() > count; })) << title;
        EXPECT_TRUE(told.at(count).starts_with(title + "|")) << told.at(count);
        EXPECT_TRUE(told.at(count).ends_with("\n" + end)) << told.at(count);
        ++count;
    };

    Drag mixed("text/uri-list", "file:///no/such\r\nsftp://host/far\r\nfile://other/file\r\n");
    EXPECT_TRUE(mixed.hover(box()));
    mixed.drop(box());
    endSheet("savePanel");
    nextIs("Not everything can be archived", "sftp://host/far\nfile://other/file");
    drop({source / "one.txt"}); // nothing is told again
    endSheet("savePanel");

    std::vector<Path> missing;
    for (int number = 1; number <= 9; ++number)
        missing.push_back("/no/such/" + std::to_string(number));
    controller().couldNotOpen(missing);
    nextIs("There are no such files", "/no/such/6\n/no/such/7\n…");

    const Path archive = source / "one.txt";
    const Path notMade = source / "none.zip"; // of a request that was cancelled: no word of it
    Q_EMIT composer.attached(archive, true);
    Q_EMIT composer.couldNotAttach(notMade);
    Q_EMIT workspace.couldNotReveal(notMade);
    type(Qt::CTRL | Qt::Key_Comma);
    waitForSheet("Preference");
    Q_EMIT workspace.couldNotReveal(archive);
    EXPECT_EQ(told.size(), 2U) << "a sheet is up";
    endSheet("Preference");
    nextIs("The archive is made", archive);
    Q_EMIT composer.couldNotAttach(archive);
    nextIs("The message could not be made", archive);
    EXPECT_EQ(workspace.revealed, std::vector<Path>{archive});
    Q_EMIT composer.attached(archive, false);
    nextIs("Please check the attachment", archive);
}

TEST_F(Request, takesCopiedFilesFromTheClipboard)
{
    start();
    const auto paste = [&](const char* format, const char* data) {
        auto* copied = new QMimeData;
        copied->setData(QLatin1String(format), data);
        QApplication::clipboard()->setMimeData(copied);
        type(Qt::CTRL | Qt::Key_V);
        return box().files();
    };
    EXPECT_TRUE(paste("text/plain", "/a/b").empty());
    EXPECT_EQ(paste("text/uri-list", "file:///a/b%20c\r\n"), std::vector<Path>{"/a/b c"});
    endSheet("savePanel");
    EXPECT_EQ(paste("x-special/gnome-copied-files", "copy\nfile:///a/b\nfile:///a/c"),
        (std::vector<Path>{"/a/b", "/a/c"}));
    endSheet("savePanel");
}
