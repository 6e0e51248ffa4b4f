// Requests, from what is dropped, opened or pasted to the archive in its place.

#include "platform/desktop/panels/SavePanel.h"
#include "tests/support/ZipInspector.h"
#include "tests/window/Program.h"

#include <QClipboard>
#include <QComboBox>
#include <QMessageBox>
#include <QProgressBar>

#include <span>

#include <sys/resource.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{

// Of this process and its children, as a disk that is full ends a file.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t size)
    {
        ::getrlimit(RLIMIT_FSIZE, &_former);
        const rlimit limit{.rlim_cur = size, .rlim_max = _former.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &_former); }

private:
    rlimit _former{};
};

} // namespace

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
    // What an archive is known by: its inode, its time and its content.
    static auto identityOf(const Path& archive)
    {
        struct stat status = {};
        EXPECT_EQ(::lstat(archive.c_str(), &status), 0);
        return std::tuple(status.st_ino, status.st_ctim.tv_sec, status.st_ctim.tv_nsec,
            support::readFile(archive));
    }
    // Confirms the save panel, also that a file be replaced.
    void save()
    {
        QDialog* panel = waitForSheet("savePanel");
        QTimer::singleShot(0, panel, [] {
            if (auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
                question->button(QMessageBox::Yes)->click();
        });
        QTest::keyClick(panel, Qt::Key_Return);
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
    store("SelectedDestination", DestinationTagEmail); // by another program of ours, say
    EXPECT_TRUE(waitFor([&] { return textOf("statusTF") == "Completed"; }));
    EXPECT_EQ(find<QProgressBar>("progress")->text(), QStringLiteral("100%"));
    EXPECT_TRUE(textOf("sizeTF").starts_with("100 kB of 100 kB")) << textOf("sizeTF");
    EXPECT_FALSE(sheet()->findChild<QPushButton*>("cancelButton")->isEnabled());
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

    const Path downloads = qEnvironmentVariable("HOME").toStdString() + "/Downloads";
    support::writeFile(downloads / "Week 12.zip", "an older file");
    readMessages();
    controller().terminate(nullptr); // which asks first
    EXPECT_FALSE(hasQuit);
    EXPECT_TRUE(fs::exists(archive));
    answer = Qt::Key_Return; // keep and quit
    controller().terminate(nullptr);
    EXPECT_TRUE(hasQuit);
    EXPECT_EQ(support::readFile(downloads / "Week 12.zip"), "an older file");
    EXPECT_EQ(support::inspectZip(downloads / "Week 12 2.zip").names(), Texts{"two.txt"});
}

TEST_F(Request, anOlderArchiveStandsWhateverFailsAndItIsSaid)
{
    enum Fault { cancelled, sourceGone, noRoom };
    const std::string toolFailed = "The archive could not be made. A tool failed (";
    const std::string unreadable
        = "The archive could not be made. '@' cannot be read (No such file or directory).";
    // What is made, what happens, what is said of it.
    const std::tuple<ArchiveType, Fault, Texts> cases[] = {
        {ArchiveTypePlainZip, cancelled, {"Unable to write to '@.zip'"}}, // which is intended
        {ArchiveTypeMacZip, cancelled, {}},
        {ArchiveTypeTarGz, noRoom, {toolFailed + "tar ended with status 2: cannot write"}},
        {ArchiveTypeMacZip, sourceGone, {unreadable}},
        {ArchiveTypePlainZip, noRoom, {toolFailed + "zip ended with status 14: cannot write"}},
        {ArchiveTypePlainZip, sourceGone, {unreadable}},
        {ArchiveTypeMacZip, noRoom, {toolFailed + "ditto ended with status 2: cannot write"}},
        {ArchiveTypeTarGz, cancelled, {}},
        {ArchiveTypeTarGz, sourceGone, {unreadable}},
    };
    const bool takesAll = std::getenv("PARCELO_ALL_TESTS") != nullptr;
    start({{"RevealWhenComplete", false}});
    readMessages();
    for (const auto& [type, fault, said] :
        std::span(cases).first(takesAll ? std::size(cases) : 4)) {
        SCOPED_TRACE(testing::Message() << type << " " << fault);
        const Path item = source / "item";
        support::writeFile(item, support::randomBytes(300'000, 1));
        if (fault == cancelled)
            fs::resize_file(item, std::uintmax_t{40} << 30); // takes the tool many seconds
        const Path archive = source / (type == ArchiveTypeTarGz ? "item.tar.gz" : "item.zip");
        support::writeFile(archive, "an older file");
        const auto older = identityOf(archive);
        told.clear();
        store("ArchiveType", type);
        drop({item});
        (void)waitForSheet("savePanel");
        if (fault == sourceGone)
            fs::remove(item);
        const FileSizeLimit limit(fault == noRoom ? 100'000 : RLIM_INFINITY);
        save();
        if (fault == cancelled) {
            QDialog* progress = waitForSheet("ProgressWindow");
            EXPECT_TRUE(waitFor([&] { // again: a tool that is about to start misses it
                QTest::keyClick(progress, Qt::Key_Escape);
                return textOf("statusTF") == "Cancelled";
            }));
            EXPECT_TRUE(progress->isVisible()) << "until the job has ended";
        }
        EXPECT_TRUE(waitFor([&] { return told.size() == said.size() && box().files().empty(); }));
        waitForTheEnd();
        ASSERT_EQ(told.size(), said.size());
        for (std::string expected : said) {
            if (const auto at = expected.find('@'); at != std::string::npos)
                expected.replace(at, 1, item);
            const std::string text = told.front().substr(told.front().find('|') + 1);
            EXPECT_EQ(text.substr(0, expected.size()), expected);
        }
        EXPECT_EQ(identityOf(archive), older);
        fs::remove(archive);
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
    const std::tuple<const char*, int, const char*> cases[] = {
        {"..", ArchiveTypeMacZip, "'..'"},
        {"Demo", ArchiveTypeDiskImage, "/usr/bin/hdiutil"},
        {"Demo", 7, "no such type of archive"},
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
