#include "app/window/DropView.h"
#include "platform/desktop/panels/SavePanel.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "tests/support/Files.h"
#include "tests/support/ZipInspector.h"
#include "tests/window/Program.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <unistd.h>

namespace fs = std::filesystem;

class Request : public Program
{
protected:
    void SetUp() override
    {
        Program::SetUp();
        for (const char* name : {"one.txt", "two.txt", "three.txt"})
            support::writeFile(source / name, std::string("contents of ") + name);
    }

    DropView& box() { return *find<DropView>("saveDropView"); }

    void drop(const DropView::Files& files)
    {
        box().setFiles(files);
        box().concludeDragOperation();
    }

    QDialog* waitForSheet(const char* objectName)
    {
        const auto isUp = [&] {
            const QDialog* sheet = Sheets::attachedSheet(&window());
            return sheet != nullptr && sheet->objectName() == QLatin1String(objectName);
        };
        EXPECT_TRUE(waitFor(isUp)) << objectName;
        return Sheets::attachedSheet(&window());
    }

    void waitForTheEnd()
    {
        EXPECT_TRUE(waitFor([&] {
            return box().files().empty() && Sheets::attachedSheet(&window()) == nullptr
                && box().acceptDrops();
        }));
    }

    const fs::path source = folder.path() / "source";
};

TEST_F(Request, proposesTheNameOfASingleItem)
{
    struct Case {
        DropView::Files files;
        bool keepsExtension;
        const char* name;
    };
    const Case cases[] = {
        {{"/a/Report.pdf"}, false, "Report"},
        {{"/a/Report.pdf"}, true, "Report.pdf"},
        {{"/a/.bashrc"}, false, ".bashrc"},
        {{"/a/b", "/a/c", "/a/d"}, false, "Untitled"},
        {{"/a/...txt"}, false, "Untitled"},
        {{}, false, "Untitled"},
    };
    for (const Case& each : cases) {
        TearDown();
        Program::SetUp();
        start({{QStringLiteral("KeepExtensionForDefaultName"), each.keepsExtension}});
        drop(each.files);
        QDialog* panel = waitForSheet("savePanel");
        EXPECT_EQ(
            panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text().toStdString(),
            each.name);
        QTest::keyClick(panel, Qt::Key_Escape);
        EXPECT_TRUE(box().files().empty());
    }
}

TEST_F(Request, makesTheArchiveBesideTheSource)
{
    start();
    support::writeFile(source / "Untitled.v2.zip", "an older file");
    drop({source / "one.txt", source / "two.txt"});
    QDialog* panel = waitForSheet("savePanel");
    panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(QStringLiteral("New.v2"));
    QTest::keyClick(panel, Qt::Key_Return);
    EXPECT_FALSE(box().acceptDrops()) << "until the request has ended";
    for (const char* action : {"chooseFiles", "chooseFolder", "paste", "showPreference"})
        EXPECT_FALSE(find<QAction>(action)->isEnabled()) << action;
    QDialog* progress = waitForSheet("ProgressWindow");
    EXPECT_TRUE(waitFor([&] {
        return progress->findChild<QLabel*>(QStringLiteral("statusTF"))->text()
            == QLatin1String("Completed");
    }));
    const auto* bar = progress->findChild<QProgressBar*>(QStringLiteral("progress"));
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_EQ(bar->maximum(), 2);
    waitForTheEnd();
    EXPECT_EQ(support::inspectZip(source / "New.v2.zip").names(),
        (std::vector<std::string>{"one.txt", "two.txt"}));
    EXPECT_EQ(support::readFile(source / "Untitled.v2.zip"), "an older file");
    EXPECT_EQ(workspace.revealed, std::vector<fs::path>{source / "New.v2.zip"});
    EXPECT_TRUE(find<QAction>("paste")->isEnabled());
    EXPECT_EQ(UserDefaults::standardUserDefaults().integerForKey(QStringLiteral("UsageCount")), 1);
}

TEST_F(Request, takesANameAsItStandsAndAsksBeforeItReplaces)
{
    start();
    for (const char* older : {"b.zip", "a \"b\" c.zip", "Report.zip"})
        support::writeFile(source / older, "an older file");
    struct Case {
        const char* typed;
        const char* archive; // none: the panel stays
        bool asks;
    };
    const Case cases[] = {
        {"a \"b\" c", "a \"b\" c.zip", true},
        {"Report.ZIP", "Report.zip", true},
        {"New.tar", "New.tar.zip", false},
        {"...zip", nullptr, false},
        {".zip", nullptr, false},
    };
    for (const Case& each : cases) {
        drop({source / "one.txt"});
        auto* panel = qobject_cast<SavePanel*>(waitForSheet("savePanel"));
        panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
            ->setText(QLatin1String(each.typed));
        bool hasAsked = false;
        QTimer::singleShot(50, panel, [&] {
            if (auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                hasAsked = true;
                question->button(QMessageBox::Yes)->click();
            }
        });
        std::filesystem::path chosen;
        panel->beginSheetModalForWindow(
            &window(), [&](int, const std::filesystem::path& path) { chosen = path; });
        QTest::keyClick(panel, Qt::Key_Return);
        serveEventsFor(80);
        EXPECT_EQ(hasAsked, each.asks) << each.typed;
        EXPECT_EQ(panel->isVisible(), each.archive == nullptr) << each.typed;
        EXPECT_EQ(chosen, each.archive == nullptr ? fs::path() : source / each.archive);
        panel->reject();
        box().clearFiles();
    }
}

TEST_F(Request, makesTheArchiveOfAFolderBesideIt)
{
    start();
    drop({source});
    QTest::keyClick(waitForSheet("savePanel"), Qt::Key_Return);
    waitForSheet("ProgressWindow");
    waitForTheEnd();
    EXPECT_EQ(support::inspectZip(folder / "source.zip").names().size(), 4u);
}

TEST_F(Request, putsDocumentsOpenedTogetherIntoOneArchive)
{
    start({{QStringLiteral("RevealWhenComplete"), false}, {QStringLiteral("AutoQuit"), true}},
        {source / "one.txt", source / "two.txt", source / "three.txt"});
    QTest::keyClick(waitForSheet("savePanel"), Qt::Key_Return);
    const fs::path scratch = controller().tmpFolder();
    waitForTheEnd();
    controller().showPreference(nullptr);
    serveEventsFor(1500);
    EXPECT_TRUE(fs::exists(scratch)) << "a sheet is up";
    QTest::keyClick(Sheets::attachedSheet(&window()), Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return !fs::exists(scratch); })) << "the program has not quit";
    EXPECT_EQ(support::inspectZip(source / "Untitled.zip").names().size(), 3u);
}

TEST_F(Request, mailsUnderTheNameThatTheSheetAsksFor)
{
    start({{QStringLiteral("SelectedDestination"), DestinationTagEmail}});
    // The sheet is waited for inside the program, so that what happens in it is told in advance.
    bool hasAsked = false;
    whenSheetIsUp([&](QDialog* sheet) {
        auto* name = sheet->findChild<QLineEdit*>(QStringLiteral("nameField"));
        EXPECT_EQ(name->text(), QStringLiteral("one"));
        name->clear();
        EXPECT_FALSE(sheet->findChild<QPushButton*>(QStringLiteral("confirmButton"))->isEnabled());
        QTest::keyClick(sheet, Qt::Key_Escape);
        hasAsked = true;
    });
    drop({source / "one.txt"});
    EXPECT_TRUE(waitFor([&] { return hasAsked; }));
    EXPECT_EQ(box().files().size(), 1u) << "what was dropped stays";

    box().clearFiles();
    const fs::path archive = controller().tmpFolder() / "Week 12.zip";
    support::writeFile(archive, "an older file");
    whenSheetIsUp([&](QDialog* sheet) {
        auto* name = sheet->findChild<QLineEdit*>(QStringLiteral("nameField"));
        name->selectAll();
        QTest::keyClicks(name, QStringLiteral("Week 12"));
        EXPECT_EQ(controller().filename(), QStringLiteral("Week 12"));
        QTest::keyClick(sheet, Qt::Key_Return);
    });
    controller().applicationOpenFile(source / "two.txt");
    waitForSheet("ProgressWindow");
    waitForTheEnd();
    EXPECT_EQ(support::inspectZip(archive).names(), std::vector<std::string>{"two.txt"});
    EXPECT_EQ(composer.mailed, std::vector<fs::path>{archive});
    EXPECT_TRUE(workspace.revealed.empty());
    EXPECT_EQ(UserDefaults::standardUserDefaults().integerForKey(QStringLiteral("EmailCount")), 1);
}

TEST_F(Request, makesAFileNameOfWhateverIsTyped)
{
    start();
    auto* field = find<QLineEdit>("nameField");
    const auto longest = [](const QString& letter, int count) { return letter.repeated(count); };
    const struct {
        QString typed;
        QString name;
    } cases[] = {
        {QStringLiteral("../../etc/passwd"), QStringLiteral("..-..-etc-passwd")},
        {longest(QStringLiteral("x"), 300), longest(QStringLiteral("x"), 251)},
        {longest(QStringLiteral("ü"), 300), longest(QStringLiteral("ü"), 125)},
        {longest(QStringLiteral("😀"), 100), longest(QStringLiteral("😀"), 62)},
    };
    for (const auto& each : cases) {
        field->clear();
        field->insert(each.typed);
        EXPECT_EQ(controller().filename(), each.name);
        controller().setFilename(each.typed);
        EXPECT_EQ(field->text(), each.name);
        EXPECT_EQ(controller().filename(), each.name);
    }
}

TEST_F(Request, tellsWhatOfADropIsLeftOut)
{
    start();
    QMimeData dropped;
    dropped.setData(QStringLiteral("text/uri-list"),
        "file:///no/such\r\nsftp://host/far\r\nfile://other/file\r\n");
    std::string told;
    whenSheetIsUp([&](QDialog* sheet) {
        told = sheet->findChild<QLabel*>(QStringLiteral("alertMessage"))->text().toStdString();
        sheet->reject();
    });
    EXPECT_TRUE(box().performDragOperation(dropped));
    box().concludeDragOperation();
    QTest::keyClick(waitForSheet("savePanel"), Qt::Key_Escape);
    EXPECT_EQ(told.substr(told.find('\n')), "\nsftp://host/far\nfile://other/file");

    drop({source / "one.txt"}); // nothing is told again
    QTest::keyClick(waitForSheet("savePanel"), Qt::Key_Escape);
}

TEST_F(Request, tellsOfDocumentsThatAreNotThere)
{
    start();
    std::string told;
    whenSheetIsUp([&](QDialog* sheet) {
        told = sheet->findChild<QLabel*>(QStringLiteral("alertMessage"))->text().toStdString();
        sheet->reject();
    });
    std::vector<fs::path> missing;
    for (int number = 1; number <= 9; ++number)
        missing.push_back("/no/such/" + std::to_string(number));
    controller().couldNotOpen(missing);
    EXPECT_TRUE(waitFor([&] { return !told.empty(); }));
    EXPECT_EQ(told.substr(told.find('\n', told.find("/6"))), "\n/no/such/7\n…");
}

TEST_F(Request, keepsTheTypeThatIsChosenAndSaysWhatItIsFor)
{
    start();
    auto* types = find<QComboBox>("typePop");
    EXPECT_EQ(controller().archiveType(), ArchiveTypePlainZip);
    const QString forAll = controller().previewText();
    types->setCurrentIndex(1);
    EXPECT_EQ(UserDefaults::standardUserDefaults().integerForKey(QStringLiteral("ArchiveType")),
        ArchiveTypeMacZip);
    EXPECT_NE(controller().previewText(), forAll);
    EXPECT_EQ(find<QLabel>("previewLabel")->text(), controller().previewText());
}

TEST_F(Request, mailsFromAFolderOfItsOwnWhereAnotherHasTakenIt)
{
    start();
    const fs::path taken = fs::temp_directory_path() / ("Parcelo_" + std::to_string(getpid()));
    fs::remove_all(taken); // of an earlier test
    fs::create_directory_symlink(source, taken);
    const fs::path scratch = controller().tmpFolder();
    EXPECT_NE(scratch, taken);
    EXPECT_EQ(fs::status(scratch).permissions(), fs::perms::owner_all);
    fs::remove(taken);
}

TEST_F(Request, stopsWhenCancelledAndSaysSo)
{
    support::writeFile(source / "large", std::string(300 << 20, 'x'));
    start({{QStringLiteral("RevealWhenComplete"), false}});
    int alerts = 0;
    AlertPanel::setPresenter([&](const AlertPanel::Alert&) { return ++alerts; });
    drop({source / "large", source / "one.txt"});
    QTest::keyClick(waitForSheet("savePanel"), Qt::Key_Return);
    QDialog* progress = waitForSheet("ProgressWindow");
    QTest::keyClick(progress, Qt::Key_Escape);
    EXPECT_TRUE(progress->isVisible()) << "until the job has ended";
    EXPECT_TRUE(waitFor([&] {
        return progress->findChild<QLabel*>(QStringLiteral("statusTF"))->text()
            == QLatin1String("Cancelled");
    }));
    waitForTheEnd();
    EXPECT_FALSE(fs::exists(source / "Untitled.zip"));
    EXPECT_TRUE(waitFor([&] { return alerts == 1; })) << "nothing could be moved into place";
}

TEST_F(Request, quittingInTheMiddleLeavesTheDestinationAlone)
{
    support::writeFile(source / "large", std::string(300 << 20, 'x'));
    support::writeFile(source / "large.zip", "an older file");
    start();
    drop({source / "large"});
    QDialog* panel = waitForSheet("savePanel");
    bool hasAsked = false;
    QTimer::singleShot(50, panel, [&] { // the question is waited for inside the panel
        if (auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            hasAsked = true;
            question->button(QMessageBox::Yes)->click();
        }
    });
    QTest::keyClick(panel, Qt::Key_Return);
    EXPECT_TRUE(hasAsked) << "whether to replace the older file";
    waitForSheet("ProgressWindow");
    const fs::path working = controller().tmpdirString();
    controller().terminate(nullptr);
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(support::readFile(source / "large.zip"), "an older file");
    EXPECT_TRUE(fs::is_empty(working));
}

TEST_F(Request, tellsWhatKeepsItFromBeginning)
{
    struct Case {
        const char* name;
        int type;
        std::string alert; // what it tells of
    };
    const Case cases[] = {
        {"Demo", ArchiveTypeMacZip, ""},
        {"..", ArchiveTypeMacZip, "'..'"},
        {"Demo", ArchiveTypeDiskImage, "/usr/bin/hdiutil"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.alert);
        TearDown();
        Program::SetUp();
        start({{QStringLiteral("ArchiveType"), each.type},
            {QStringLiteral("SelectedDestination"), DestinationTagEmail}});
        std::string told;
        QTimer listening;
        QObject::connect(&listening, &QTimer::timeout, &window(), [&] {
            const auto* message = window().findChild<QLabel*>(QStringLiteral("alertMessage"));
            if (message == nullptr)
                return;
            told = message->text().toStdString();
            qobject_cast<QDialog*>(message->window())->accept();
        });
        listening.start(10);
        whenSheetIsUp([&](QDialog* sheet) {
            sheet->findChild<QLineEdit*>(QStringLiteral("nameField"))
                ->setText(QLatin1String(each.name));
            QTest::keyClick(sheet, Qt::Key_Return);
        });
        drop({source / "one.txt"});
        EXPECT_TRUE(waitFor([&] { return !told.empty() || !composer.mailed.empty(); }));
        waitForTheEnd();
        listening.stop();
        EXPECT_EQ(told.empty(), each.alert.empty()) << told;
        EXPECT_NE(told.find(each.alert), std::string::npos) << told;
        if (told.empty()) {
            EXPECT_EQ(support::inspectZip(composer.mailed.front()).names(),
                (std::vector<std::string>{"Demo/", "Demo/one.txt"}));
        }
    }
}

TEST_F(Request, takesCopiedFilesFromTheClipboard)
{
    start();
    struct Case {
        const char* format;
        const char* data;
        DropView::Files files;
    };
    const Case cases[] = {
        {"text/uri-list", "file:///a/b%20c\r\n", {"/a/b c"}},
        {"x-special/gnome-copied-files", "copy\nfile:///a/b\nfile:///a/c", {"/a/b", "/a/c"}},
        {"text/plain", "/a/b", {}},
    };
    for (const Case& each : cases) {
        auto* copied = new QMimeData;
        copied->setData(QLatin1String(each.format), each.data);
        QGuiApplication::clipboard()->setMimeData(copied);
        controller().paste(nullptr);
        EXPECT_EQ(box().files(), each.files);
        if (!each.files.empty())
            QTest::keyClick(waitForSheet("savePanel"), Qt::Key_Escape);
    }
}
