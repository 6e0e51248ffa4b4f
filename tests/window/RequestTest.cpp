// Requests, from what is dropped, opened or pasted to the archive in its place.

#include "platform/desktop/panels/SavePanel.h"
#include "tests/support/ZipInspector.h"
#include "tests/window/Program.h"

#include <QClipboard>
#include <QComboBox>
#include <QProgressBar>

#include <sys/resource.h>

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

    const Path source = folder / "source";
};

TEST_F(Request, makesTheArchiveBesideTheSourceAsTheSettingsSay)
{
    constexpr int size = 100000;
    support::writeFile(source / "folder/text", support::someText(size));
    support::writeFile(source / "folder/.DS_Store", "what a file manager leaves behind");
    start({{"CompressionLevel", 0}, {"AutoQuit", true}});
    drop({source / "folder", source / "one.txt"});
    endSheet("savePanel", Qt::Key_Return, QStringLiteral("New.v2"));
    for (const char* action : {"chooseFiles", "paste", "showPreference"})
        EXPECT_FALSE(find<QAction>(action)->isEnabled()) << action;
    (void)waitForSheet("ProgressWindow");
    readMessages();
    for (const char* action : {"performClose", "terminate"}) {
        find<QAction>(action)->trigger();
        EXPECT_EQ(std::exchange(told, {}).size(), 1) << action;
    }
    drop({source / "two.txt"});
    EXPECT_EQ(textOf("waitingLabel"), "Next: two.txt");
    store("SelectedDestination", DestinationTagEmail); // by another program of ours, say
    EXPECT_TRUE(waitFor([&] { return textOf("statusTF") == "Completed"; }));
    EXPECT_EQ(find<QProgressBar>("progress")->text(), QStringLiteral("100%"));
    EXPECT_TRUE(textOf("sizeTF").starts_with("100 kB of 100 kB")) << textOf("sizeTF");
    EXPECT_FALSE(sheet()->findChild<QPushButton*>("cancelButton")->isEnabled());
    waitForTheEnd();
    store("SelectedDestination", DestinationTagSameAsSource);
    endSheet("savePanel"); // what was dropped meanwhile
    EXPECT_TRUE(find<QLabel>("waitingLabel")->isHidden());
    const Path archive = source / "New.v2.zip";
    EXPECT_EQ(support::inspectZip(archive).names(), (Texts{"folder/", "folder/text", "one.txt"}))
        << "without what only a file manager needs";
    EXPECT_GT(fs::file_size(archive), size) << "by the level, nothing is compressed";
    EXPECT_EQ(workspace.revealed, std::vector<Path>{archive});
    QTest::qWait(1000); // it would quit 0.8 s after the sheet has gone
    EXPECT_FALSE(hasQuit) << "no documents were opened with its icon";

    drop({source / "folder"});
    endSheet("savePanel", Qt::Key_Return);
    answer = Qt::Key_Space; // on the button that stops and quits
    find<QAction>("terminate")->trigger();
    EXPECT_TRUE(waitFor([&] { return hasQuit; }));
    EXPECT_FALSE(fs::exists(source / "folder.zip"));
}

TEST_F(Request, takesANameAsItStandsAndTellsAtOnceWhatComesOfIt)
{
    const Path odd = source / "caf\xe9"; // no UTF-8
    fs::create_directory(source / "folder");
    for (const Path& older :
        {source / "\"b\" cdefghijklmnopqrstuvwx.zip", odd / "Report.zip", odd / "a.tar.gz"})
        support::writeFile(older, "an older file");
    const std::string replaced = " exists and will be replaced (13 bytes, ";
    // Dropped, whether its extension is kept, the proposal; typed instead, its file (none: the
    // panel stays), how what is told begins.
    using Text = const char*;
    const std::tuple<Text, bool, Text, Text, Path, std::string> cases[] = {
        {"one.txt", false, "one", "\"b\" cdefghijklmnopqrstuvwx",
            "\"b\" cdefghijklmnopqrstuvwx.zip", "“\"b\" cdefghijklmnopqrstuvwx.zip”" + replaced},
        {"caf\xe9/two.txt", true, "two.txt", "Report.ZIP", "caf\xe9/Report.zip",
            "“Report.zip”" + replaced},
        {".bashrc", false, ".bashrc", "New.tar", "New.tar.zip", ""},
        {"folder", false, "folder", "folder", "folder.zip", ""},
        {"folder", false, "folder", "...zip", {}, "This cannot"},
        {"folder", false, "folder", ".zip", {}, ""},
        {"folder", false, "folder", "a/b", {}, "A name cannot contain a slash"},
        {"one.txt", false, "one", ".a", ".a.zip", "Names that begin with a dot"},
        {"one.txt", false, "one", "a ", "a .zip", "This name begins or ends with a space"},
        {"one.txt", false, "one", "Q: A?", "Q: A?.zip", "Some systems refuse names with “:”"},
        {"one.txt", false, "one", "lpt1.v2", "lpt1.v2.zip", "Windows refuses"},
        {"gone/item", false, "item", "a", {}, "This folder cannot be found"},
    };
    start();
    SavePanel* panel = nullptr;
    Path chosen; // instead of making it
    const auto ask = [&](const Path& dropped) {
        drop({source / dropped});
        panel = qobject_cast<SavePanel*>(waitForSheet("savePanel"));
        chosen.clear();
        panel->beginSheetModalForWindow(&window(), [&](int, const Path& path) { chosen = path; });
    };
    for (const auto& [dropped, keeps, proposed, typed, file, said] : cases) {
        SCOPED_TRACE(typed);
        store("KeepExtensionForDefaultName", keeps);
        ask(dropped);
        EXPECT_EQ(find<QLineEdit>("fileNameEdit")->selectedText(), QLatin1String(proposed));
        find<QLineEdit>("fileNameEdit")->setText(QLatin1String(typed));
        EXPECT_EQ(textOf("messageLabel").substr(0, said.size()), said);
        EXPECT_EQ(textOf("messageLabel").empty(), said.empty());
        QTest::keyClick(panel, Qt::Key_Return);
        EXPECT_EQ(panel->isVisible(), file.empty());
        EXPECT_EQ(chosen, file.empty() ? Path() : source / file);
        panel->reject();
    }
    // Another's file comes to the free name before it is confirmed: that is told first.
    ask(odd.filename() / "Report.txt");
    find<QPushButton>("nextFreeButton")->click();
    EXPECT_EQ(find<QLineEdit>("fileNameEdit")->text(), QStringLiteral("Report 2"));
    EXPECT_EQ(textOf("messageLabel"), "");
    support::writeFile(odd / "Report 2.zip", "another's");
    QTest::keyClick(panel, Qt::Key_Return);
    EXPECT_TRUE(textOf("messageLabel").starts_with("“Report 2.zip”")) << textOf("messageLabel");
    store("ArchiveType", ArchiveTypeTarGz);
    find<QLineEdit>("fileNameEdit")->setText(QStringLiteral("a"));
    EXPECT_TRUE(textOf("messageLabel").starts_with("“a.tar.gz”")) << textOf("messageLabel");
    QTest::keyClick(panel, Qt::Key_Return);
    EXPECT_EQ(chosen, odd / "a.zip") << "the type makes its own of it";
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

    readMessages();
    answerWith("5\" disk"); // which the script cannot hold
    drop({source / "three.txt"});
    EXPECT_TRUE(waitFor([&] { return !told.empty(); }));
    EXPECT_TRUE(told.front().starts_with("The message could not be made|")) << told.front();
    EXPECT_EQ(workspace.revealed, std::vector<Path>{controller().tmpFolder() / "5\" disk.zip"});
    waitForTheEnd();
    fs::remove(workspace.revealed.front());

    store("SelectedDestination", DestinationTagSameAsSource);
    controller().chooseFilesForEmail();
    endSheet("chooseFilesPanel", Qt::Key_Return, QString::fromStdString(source / "two.txt"));
    answerWith("Week 12");
    (void)waitForSheet("ProgressWindow");
    waitForTheEnd();
    EXPECT_EQ(composer.mailed, std::vector<Path>{archive});
    EXPECT_EQ(support::inspectZip(archive).names(), Texts{"two.txt"});

    const Path downloads = qEnvironmentVariable("HOME").toStdString() + "/Downloads";
    support::writeFile(downloads / "Week 12.zip", "an older file");
    controller().terminate(nullptr); // which asks first
    EXPECT_FALSE(hasQuit);
    EXPECT_TRUE(fs::exists(archive));
    answer = Qt::Key_Return; // keep and quit
    controller().terminate(nullptr);
    EXPECT_TRUE(hasQuit);
    EXPECT_EQ(support::readFile(downloads / "Week 12.zip"), "an older file");
    EXPECT_EQ(support::inspectZip(downloads / "Week 12 2.zip").names(), Texts{"two.txt"});
}

TEST_F(Request, filesThatWaitComeAfterARequestThatIsGivenUp)
{
    start({{"SelectedDestination", DestinationTagEmail}});
    Texts proposed;
    const std::function<void()> giveUp = [&] { // the program waits for each sheet
        proposed.push_back(find<QLineEdit>("nameField")->text().toStdString());
        whenSheetIsUp(giveUp);
        QTest::keyClick(sheet(), Qt::Key_Escape);
    };
    whenSheetIsUp(giveUp);
    controller().openDocuments({.files = {source / "one.txt"}});
    drop({source / "two.txt"});
    controller().openDocuments({.files = {source / "three.txt"}});
    EXPECT_TRUE(waitFor([&] { return proposed.size() == 3; }));
    EXPECT_EQ(proposed, (Texts{"one", "two", "three"}));
}

TEST_F(Request, filesThatWaitAreNotForgottenWithoutAQuestion)
{
    start();
    drop({source / "one.txt"});
    (void)waitForSheet("savePanel");
    for (const char* later : {"two.txt", "three.txt"})
        controller().openDocuments({.files = {source / later}});
    controller().terminate(nullptr); // the answer is no
    EXPECT_FALSE(hasQuit);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_TRUE(told.front().ends_with(":\ntwo.txt\nthree.txt"));
    AlertPanel::setPresenter([](const auto&) { return int{AlertPanel::answerOther}; });
    controller().terminate(nullptr);
    EXPECT_TRUE(hasQuit);
}

TEST_F(Request, anOlderArchiveStandsWhateverFailsAndItIsSaid)
{
    enum Fault { cancelled, sourceGone, noRoom };
    const std::string failed = "The archive could not be made. ";
    const Path item = source / "item";
    // What is made, what happens, what is said of it.
    const std::tuple<ArchiveType, Fault, std::string> cases[] = {
        {ArchiveTypePlainZip, cancelled, "Unable to write to '" + item.native() + ".zip'"}, // meant
        {ArchiveTypeMacZip, cancelled, ""},
        {ArchiveTypeTarGz, noRoom, failed + "A tool failed (tar ended with status 2: cannot write"},
        {ArchiveTypePlainZip, noRoom,
            failed + "A tool failed (zip ended with status 14: cannot write"},
        {ArchiveTypeMacZip, sourceGone,
            failed + "'" + item.native() + "' cannot be read (No such file or directory)."},
    };
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const auto limitFiles = [&](rlim_t size) { // as a disk that is full ends a file
        limit.rlim_cur = std::min(size, limit.rlim_max);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    };
    start({{"RevealWhenComplete", false}});
    readMessages();
    for (const auto& [type, fault, said] : cases) {
        SCOPED_TRACE(testing::Message() << type << " " << fault);
        support::writeFile(item, support::randomBytes(4'000'000, 1));
        if (fault == cancelled)
            fs::resize_file(item, std::uintmax_t{40} << 30); // takes the tool many seconds
        const Path archive = source / (type == ArchiveTypeTarGz ? "item.tar.gz" : "item.zip");
        support::writeFile(archive, "an older file");
        const Path older = folder / "older";
        fs::create_hard_link(archive, older);
        told.clear();
        store("ArchiveType", type);
        drop({item});
        (void)waitForSheet("savePanel");
        if (fault == sourceGone)
            fs::remove(item);
        if (fault == noRoom)
            limitFiles(3'000'000); // what windows are drawn in may be files, too
        endSheet("savePanel", Qt::Key_Return);
        if (fault == cancelled) {
            QDialog* progress = waitForSheet("ProgressWindow");
            EXPECT_TRUE(waitFor([&] { // again: a tool that is about to start misses it
                QTest::keyClick(progress, Qt::Key_Escape);
                return textOf("statusTF") == "Cancelled";
            }));
            EXPECT_TRUE(progress->isVisible()) << "until the job has ended";
        }
        EXPECT_TRUE(waitFor([&] { return told.empty() == said.empty() && box().files().empty(); }));
        waitForTheEnd();
        limitFiles(RLIM_INFINITY);
        ASSERT_EQ(told.empty(), said.empty());
        EXPECT_TRUE(said.empty() || told.front().find(said) != told.front().npos) << told.front();
        EXPECT_EQ(support::readFile(archive), "an older file");
        EXPECT_TRUE(fs::equivalent(archive, older));
        fs::remove(archive);
        fs::remove(older);
        fs::remove(item);
        EXPECT_EQ(support::namesIn(source), (Texts{"one.txt", "three.txt", "two.txt"}));
    }
}

TEST_F(Request, namesWhatIsMissingFromTheArchive)
{
    for (int number = 10; number < 22; ++number) {
        fs::create_directory(source / "folder");
        support::makeFifo(source / "folder" / std::to_string(number));
    }
    start();
    answer = Qt::Key_Space; // on the first button, which copies
    readMessages();
    drop({source / "folder", source / "one.txt"});
    endSheet("savePanel", Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !told.empty(); }));
    EXPECT_TRUE(told.front().starts_with("Not everything is in the archive|")) << told.front();
    EXPECT_TRUE(told.front().ends_with("\nfolder/19: is a FIFO\n… and 2 more")) << told.front();
    EXPECT_EQ(QApplication::clipboard()->text().count(QStringLiteral(": is a FIFO")), 12);
    const Path archive = source / "Untitled.zip";
    EXPECT_EQ(support::inspectZip(archive).names(), (Texts{"folder/", "one.txt"}));
    EXPECT_EQ(workspace.revealed, std::vector<Path>{archive});
}

TEST_F(Request, tellsWhatKeepsItFromBeginning)
{
    start({{"SelectedDestination", DestinationTagEmail}});
    readMessages();
    for (const auto& [name, type, reason] : {std::tuple("..", int{ArchiveTypeMacZip}, "'..'"),
             {"Demo", ArchiveTypeDiskImage, "/usr/bin/hdiutil"},
             {"Demo", 7, "no such type of archive"}}) {
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
    drop("file:///no/such\r\nsftp://host/far\r\nfile://other/file\r\n");
    endSheet("savePanel");
    nextIs("Not everything can be archived", "sftp://host/far\nfile://other/file");
    drop({source / "one.txt"}); // nothing is told again
    endSheet("savePanel");
    controller().couldNotOpen(QStringList(11, "/no/such"));
    nextIs("There are no such files", "/no/such\n… and 1 more");

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
