// The engine with stand-ins for its tools: what they are asked, and what the delegate is told.

#include "shared/Library/Archiver/Archiver.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/base/process/Task.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/base/seams/AssertionHandler.h"
#include "platform/base/seams/MainQueue.h"
#include "shared/Library/Archiver/DataArchiverConvenience.h"
#include "shared/Library/Archiver/FileManagerArchiverConvenience.h"
#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace support;
namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace
{

// One for the whole process, like the answer to where the zip tool is.
void useStandIns()
{
    static const TestFolder bundle;
    const fs::path resources = bundle / "Contents/Resources";
    if (!fs::create_directories(resources))
        return;
    for (const char* tool : {"zip", "tar", "ditto"})
        fs::create_symlink(PARCELO_TEST_STANDINS_DIR "/tool", resources / tool);
    Bundle::setMain(Bundle(bundle.path()));
}

class ArchiverTest : public testing::Test
{
protected:
    ArchiverTest()
    {
        useStandIns();
        setenv("TMPDIR", folder.path().c_str(), 1);
        for (const char* name : {"a/one", "b/two", "c/three"})
            writeFile(folder / name, name);
        fs::create_directories(folder / "scratch");
        fs::create_directories(folder / "out");
        MainQueue::setSubmitter(
            [this](std::chrono::nanoseconds delay, const MainQueue::Block& block) {
                EXPECT_EQ(delay, std::chrono::milliseconds(100));
                block();
            });
        AlertPanel::setPresenter([this](const AlertPanel::Alert& alert) {
            alerts.push_back(alert.title + ": " + alert.message + " [" + alert.defaultButton
                + alert.alternateButton + alert.otherButton + "]");
            return 1;
        });
    }
    ~ArchiverTest() override
    {
        MainQueue::setSubmitter({});
        AlertPanel::setPresenter({});
        unsetenv("TMPDIR");
    }

    // What the stand-ins do besides recording, in shell; $4 is a zip's archive.
    void plan(const std::string& script) const { writeFile(folder / "plan", script + "\n"); }

    // A delegate that notes what it is told.
    ArchiverDelegate noting(bool takesNames = false)
    {
        const auto number = [this](const char* word) {
            return [this, word](int value) { told.push_back(word + std::to_string(value)); };
        };
        ArchiverDelegate delegate{.setNumberOfFiles = number("files "),
            .progressBy = number("progress "),
            .taskCompletedWithStatusCode = number("task "),
            .archiverCompletedWithStatus = number("completed ")};
        if (takesNames)
            delegate.archiverDidAddFile
                = [this](const std::string& name) { told.push_back("added " + name); };
        return delegate;
    }

    Archiver::ArchiveFiles job(int type) const
    {
        return {.files = {folder / "a/one", folder / "b/two", folder / "c/three"},
            .name = "Demo",
            .type = type,
            .toFolder = folder / "out"};
    }

    // The runs so far, with the test's folder as "@".
    Lines runs() const
    {
        std::string text = fs::exists(folder / "record") ? readFile(folder / "record") : "";
        const std::string path = fs::canonical(folder.path());
        for (auto at = text.find(path); at != std::string::npos; at = text.find(path))
            text.replace(at, path.size(), "@");
        Lines lines;
        for (std::size_t end = 0; (end = text.find('\n')) != std::string::npos;
             text.erase(0, end + 1))
            lines.push_back(text.substr(0, end));
        return lines;
    }

    const TestFolder folder;
    std::unique_ptr<Archiver> archiver = Archiver::initWithWorkingDirectory(folder / "scratch");
    Lines told;
    Lines alerts;
};

} // namespace

TEST_F(ArchiverTest, runsEachToolWithItsArgumentsInItsFolder)
{
    struct Case {
        int type;
        bool exclude;
        int level;
        Lines expected;
        const char* result;
    };
    const Case cases[] = {
        {ArchiveTypePlainZip, true, 6,
            {"zip|@/a|-6|-y|-r|@/scratch/Demo.zip|./one|-x|*/.DS_Store",
                "zip|@/b|-6|-y|-r|@/scratch/Demo.zip|./two|-x|*/.DS_Store",
                "zip|@/c|-6|-y|-r|@/scratch/Demo.zip|./three|-x|*/.DS_Store"},
            "out/Demo.zip"},
        {ArchiveTypePlainZip, false, 0,
            {"zip|@/a|-0|-y|-r|@/scratch/Demo.zip|./one",
                "zip|@/b|-0|-y|-r|@/scratch/Demo.zip|./two",
                "zip|@/c|-0|-y|-r|@/scratch/Demo.zip|./three"},
            "out/Demo.zip"},
        {ArchiveTypePlainZip, false, -1,
            {"zip|@/a|-y|-r|@/scratch/Demo.zip|./one", "zip|@/b|-y|-r|@/scratch/Demo.zip|./two",
                "zip|@/c|-y|-r|@/scratch/Demo.zip|./three"},
            "out/Demo.zip"},
        {ArchiveTypeTarGz, true, 9,
            {"tar|@/scratch|--exclude|.DS_Store|-zhcf|@/out/Demo.tar.gz|Demo"}, "out/Demo.tar.gz"},
        {ArchiveTypeTarGz, false, 9, {"tar|@/scratch|-zhcf|@/out/Demo.tar.gz|Demo"},
            "out/Demo.tar.gz"},
        {ArchiveTypeMacZip, true, 9,
            {"ditto|@/scratch|-V|-c|-k|--keepParent|--sequesterRsrc|./Demo|@/out/Demo.zip"},
            "out/Demo.zip"},
        {ArchiveTypeDiskImage, true, 9, {}, nullptr}, // the disk-image tool is nowhere
        {7, true, 9, {}, nullptr},
        {-1, true, 9, {}, nullptr},
    };
    archiver->setDelegate(noting());
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::Message() << "type " << each.type << ", level " << each.level);
        fs::remove(folder / "record");
        told.clear();
        auto request = job(each.type);
        request.excludeDSStore = each.exclude;
        request.compressionLevel = each.level;
        const auto result = archiver->archiveFiles(request);
        EXPECT_EQ(result, each.result ? std::optional(folder / each.result) : std::nullopt);
        EXPECT_EQ(runs(), each.expected);
        Lines expected{each.type == ArchiveTypePlainZip ? "files 3" : "files 4"};
        expected.resize(1 + each.expected.size(), "task 0");
        expected.emplace_back("completed 0");
        EXPECT_EQ(told, expected);
        EXPECT_FALSE(fs::exists(folder / "scratch/Demo")) << "the staging folder stays";
    }
    EXPECT_EQ(readFile(folder / "environment"), "TMPDIR=" + folder.path().native() + "\n");
}

TEST_F(ArchiverTest, withoutNameOrFolderNothingHappens)
{
    archiver->setDelegate(noting());
    for (const int type : {ArchiveTypePlainZip, ArchiveTypeTarGz}) {
        for (const auto& nothing : {std::optional<std::string>(), std::optional<std::string>("")}) {
            auto nameless = job(type);
            nameless.name = nothing;
            EXPECT_EQ(archiver->archiveFiles(nameless), std::nullopt);
            auto homeless = job(type);
            homeless.toFolder = nothing;
            EXPECT_EQ(archiver->archiveFiles(homeless), std::nullopt);
        }
    }
    EXPECT_EQ(told, Lines{});
    EXPECT_EQ(runs(), Lines{});
}

TEST_F(ArchiverTest, aPlainZipReplacesAnOlderArchiveAndTheTildeIsExpandedOnlyForOthers)
{
    plan(R"(if [ "${0##*/}" = zip ]; then printf %s "$5" >>"$4"; fi)");
    writeFile(folder / "out/Demo.zip", "older");
    EXPECT_EQ(archiver->archiveFiles(job(ArchiveTypePlainZip)), folder / "out/Demo.zip");
    EXPECT_EQ(readFile(folder / "out/Demo.zip"), "./one./two./three");
    EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    EXPECT_EQ(alerts, Lines{});

    setenv("HOME", folder.path().c_str(), 1);
    auto request = job(ArchiveTypeTarGz);
    request.toFolder = "~/out";
    EXPECT_EQ(archiver->archiveFiles(request), folder / "out/Demo.tar.gz");
    request.type = ArchiveTypePlainZip;
    EXPECT_EQ(archiver->archiveFiles(request), "~/out/Demo.zip");
    EXPECT_EQ(alerts, Lines{"Error: Unable to write to '~/out/Demo.zip' [OK]"});
}

TEST_F(ArchiverTest, anEmptyListEndsWithTheWriteAlert)
{
    archiver->setDelegate(noting());
    auto request = job(ArchiveTypePlainZip);
    request.files.clear();
    EXPECT_EQ(archiver->archiveFiles(request), folder / "out/Demo.zip");
    EXPECT_EQ(told, (Lines{"files 0", "completed 0"}));
    EXPECT_EQ(alerts,
        Lines{"Error: Unable to write to '" + (folder / "out/Demo.zip").native() + "' [OK]"});
}

TEST_F(ArchiverTest, cancelBeforeTheSecondItemLeavesNoArchiveAndNoOlderOne)
{
    plan(R"(printf x >>"$4"; : >"$TMPDIR/started"; exec sleep 30)");
    writeFile(folder / "out/Demo.zip", "older");
    archiver->setDelegate(noting());
    archiver->cancel(); // of no job: forgotten
    std::jthread canceller([&] {
        EXPECT_TRUE(waitUntil([&] { return fs::exists(folder / "started"); }));
        archiver->cancel();
    });
    EXPECT_EQ(archiver->archiveFiles(job(ArchiveTypePlainZip)), folder / "out/Demo.zip");
    EXPECT_EQ(told, (Lines{"files 3", "task 130", "completed 1"}));
    EXPECT_EQ(runs().size(), 1U);
    EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    EXPECT_TRUE(fs::is_empty(folder / "out"));
    EXPECT_EQ(alerts.size(), 1U);
}

TEST_F(ArchiverTest, stagesNothingUnderANameThatLeadsOutOfTheWorkingFolder)
{
    writeFile(folder / "scratch/kept", "kept");
    for (const char* name : {".", ".."})
        for (const int type : {ArchiveTypeTarGz, ArchiveTypeMacZip}) {
            auto request = job(type);
            request.name = name;
            EXPECT_EQ(archiver->archiveFiles(request), std::nullopt);
        }
    EXPECT_EQ(readFile(folder / "scratch/kept"), "kept");
    EXPECT_EQ(runs().size(), 0U);
}

TEST_F(ArchiverTest, anAbandonedJobLeavesTheOlderArchiveAlone)
{
    plan(R"(printf x >>"$4"; : >"$TMPDIR/started"; exec sleep 30)");
    writeFile(folder / "out/Demo.zip", "older");
    archiver->setDelegate(noting());
    std::jthread ender([&] {
        EXPECT_TRUE(waitUntil([&] { return fs::exists(folder / "started"); }));
        archiver->abandon();
    });
    archiver->archiveFiles(job(ArchiveTypePlainZip));
    EXPECT_EQ(runs().size(), 1U);
    EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    EXPECT_EQ(readFile(folder / "out/Demo.zip"), "older");
    EXPECT_EQ(alerts, Lines());
}

TEST_F(ArchiverTest, anAbandonedToolThatDoesNotHeedIsKilled)
{
    plan(R"(printf x >>"$4"; : >"$TMPDIR/started"; trap '' INT; sleep 60; sleep 60)");
    archiver->setDelegate(noting());
    std::jthread ender([&](const std::stop_token& ended) {
        EXPECT_TRUE(waitUntil([&] { return fs::exists(folder / "started"); }));
        while (!ended.stop_requested()) {
            archiver->abandon();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    });
    const auto start = std::chrono::steady_clock::now();
    archiver->archiveFiles(job(ArchiveTypePlainZip));
    ender.request_stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    EXPECT_TRUE(fs::is_empty(folder / "out"));
}

TEST_F(ArchiverTest, aJobAbandonedBeforeItsToolTouchesNothing)
{
    for (const int type : {ArchiveTypePlainZip, ArchiveTypeTarGz, ArchiveTypeMacZip}) {
        const std::string name = type == ArchiveTypeTarGz ? "Demo.tar.gz" : "Demo.zip";
        writeFile(folder / "out" / name, "older");
        archiver->abandon();
        archiver->archiveFiles(job(type));
        EXPECT_EQ(readFile(folder / "out" / name), "older");
        EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    }
    EXPECT_EQ(runs().size(), 0U);
}

TEST_F(ArchiverTest, cancelAtAnyMomentIsSafe)
{
    plan(R"(printf x >>"$4")");
    std::atomic<bool> ended = false;
    std::jthread canceller([&] {
        while (!ended)
            archiver->cancel();
    });
    for (int round = 0; round < 10; ++round)
        archiver->archiveFiles(job(round % 2 == 0 ? ArchiveTypePlainZip : ArchiveTypeTarGz));
    ended = true;
}

TEST_F(ArchiverTest, stagesLinksOrCopies)
{
    writeFile(folder / "d/one", "another");
    writeFile(folder / "bundle/inner", "inner");
    const std::vector<fs::path> items{folder / "a/one", folder / "d/one", folder / "bundle"};
    archiver->setDelegate(noting());

    const fs::path links = archiver->makeTmpFolderForArchive("L", ArchiveTypeTarGz, items);
    EXPECT_EQ(fs::read_symlink(links / "one"), folder / "a/one"); // of two the first
    EXPECT_EQ(fs::read_symlink(links / "bundle"), folder / "bundle");
    const fs::path copies = archiver->makeTmpFolderForArchive("C", ArchiveTypeMacZip, items);
    EXPECT_EQ(readFile(copies / "one"), "another"); // of two the second
    EXPECT_EQ(readFile(copies / "bundle/inner"), "inner");
    EXPECT_TRUE(fs::is_directory(fs::symlink_status(copies / "bundle")));
    EXPECT_EQ(fs::hard_link_count(folder / "a/one"), 1U);
    EXPECT_EQ(told, (Lines{"files 3", "files 4"}));

    fs::create_directory(folder / "scratch/L_511800");
    Archiver::removeTmpFolder(links);
    EXPECT_EQ(namesIn(folder / "scratch"), (Lines{"C", "L_511800", "L_511801"}));
}

TEST_F(ArchiverTest, collectsOutputWithoutADelegateAndStreamsItWithOne)
{
    plan("echo out; echo err >&2; exit 3");
    int status = -1;
    EXPECT_EQ(
        archiver->runCommand(Archiver::tarPath(), {"x"}, std::nullopt, &status), "out\nerr\n");
    EXPECT_EQ(status, 3);

    std::string output;
    auto delegate = noting();
    delegate.toolOutput = [&](std::string_view bytes) { output += bytes; };
    delegate.progressBy = {};
    archiver->setDelegate(delegate);
    status = -1;
    EXPECT_EQ(
        archiver->runCommand(Archiver::tarPath(), {"x"}, std::nullopt, &status), std::nullopt);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(output, "out\nerr\n");
    EXPECT_EQ(told, Lines{"task 3"});

    plan("echo one; sleep 0.3; printf 'two\\nthree\\n'");
    archiver->setDelegate(noting());
    archiver->runCommand(Archiver::tarPath(), {}, folder / "a", nullptr);
    EXPECT_EQ(told, (Lines{"task 3", "progress 1", "progress 2", "task 0"}));
}

TEST_F(ArchiverTest, takesNamesAndCountsFromChunks)
{
    struct Case {
        std::string chunk;
        const char* added; // nothing: no name found
        int lines;
    };
    const Case cases[] = {
        {"  adding: a/b (deflated 5%)\n", "a/b (deflated 5%)\n", 1},
        {"  adding: a\n  adding: b\n", "a\n  adding: b\n", 2},
        {"copying file ./a ... \n", "./a ... ", 1},
        {"copying symlink x\n", "x", 1},
        {"copying file ", "", 0},
        {">>> copying file ./a\n", "foo", 1},
        {"copying symlink b copying file a\n", "foo", 1},
        {"one\ntwo\nthree", nullptr, 2},
        {std::string("a\0b\n", 4), nullptr, 1},
        {"  adding: caf\xc3\xa9\n", nullptr, -1},
        {"", nullptr, 0},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.chunk);
        EXPECT_EQ(DataArchiverConvenience::numberOfLines(each.chunk), each.lines);
        told.clear();
        archiver->setDelegate(noting());
        archiver->taskDataAvailable(each.chunk);
        EXPECT_EQ(told, each.lines > 0 ? Lines{"progress " + std::to_string(each.lines)} : Lines{});
        told.clear();
        archiver->setDelegate(noting(true));
        archiver->taskDataAvailable(each.chunk);
        EXPECT_EQ(
            told, each.added != nullptr ? Lines{std::string("added ") + each.added} : Lines{});
    }
}

TEST_F(ArchiverTest, aToolThatCannotBeLaunchedLeavesAnEngineThatStillWorks)
{
    archiver->setDelegate(noting());
    EXPECT_THROW(archiver->runCommand("/no/tool", {}, std::nullopt, nullptr), LaunchFailure);
    EXPECT_THROW(archiver->runCommand(std::nullopt, {}, std::nullopt, nullptr), LaunchFailure);
    archiver->cancel();
    EXPECT_EQ(told, Lines{});
    EXPECT_EQ(archiver->archiveFiles(job(ArchiveTypeTarGz)), folder / "out/Demo.tar.gz");
    EXPECT_EQ(told, (Lines{"files 4", "task 0", "completed 0"}));
}

TEST_F(ArchiverTest, aToolThatCannotBeLaunchedLeavesNothingInTheWorkingFolder)
{
    plan(R"(printf x >>"$4"; rm -rf "$TMPDIR/gone")"); // the folder of the second item
    writeFile(folder / "gone/two", "two");
    auto zip = job(ArchiveTypePlainZip);
    zip.files = {folder / "gone/one", folder / "gone/two"};
    EXPECT_THROW(archiver->archiveFiles(zip), LaunchFailure);
    EXPECT_TRUE(fs::is_empty(folder / "scratch"));

    const Bundle former = Bundle::main();
    Bundle::setMain(Bundle(folder / "none")); // there is no tar
    EXPECT_THROW(archiver->archiveFiles(job(ArchiveTypeTarGz)), LaunchFailure);
    Bundle::setMain(former);
    EXPECT_TRUE(fs::is_empty(folder / "scratch"));
}

TEST_F(ArchiverTest, decidesOnceWhereZipIsAndEachTimeWhereTarIs)
{
    const fs::path zip = Archiver::zipPath();
    const Bundle former = Bundle::main();
    Bundle::setMain(Bundle(folder / "none"));
    EXPECT_EQ(Archiver::zipPath(), zip);
    EXPECT_EQ(Archiver::tarPath(), std::nullopt);
    EXPECT_EQ(Archiver::missingTool(ArchiveTypeMacZip), "/usr/bin/ditto");
    archiver->setDelegate(noting());
    EXPECT_EQ(archiver->archiveFiles(job(ArchiveTypeMacZip)), std::nullopt);
    EXPECT_EQ(told, (Lines{"files 4", "completed 0"}));
    Bundle::setMain(former);
}

TEST_F(ArchiverTest, reportsMisuseByMethodFileAndLine)
{
    Lines reports;
    const auto former
        = AssertionHandler::setCurrentHandler([&](const AssertionHandler::Report& report) {
              EXPECT_NE(report.object, nullptr);
              EXPECT_EQ(report.file, "shared/Library/Archiver");
              reports.push_back(std::to_string(report.lineNumber) + " " + report.description);
          });
    EXPECT_EQ(Archiver::init(), nullptr);
    EXPECT_NE(Archiver::initWithWorkingDirectory(std::nullopt), nullptr);
    EXPECT_EQ(archiver->archiveFile({.file = "/x", .type = ArchiveTypePlainZip, .toFolder = "/y"}),
        std::nullopt);
    AssertionHandler::setCurrentHandler(former);
    EXPECT_EQ(reports,
        (Lines{"657 Archiver. Use initWithWorkingDirectory: instead",
            "664 initWithWorkingDirectory: workingDirectory must not be nil",
            "702 Should not get here!!"}));
    EXPECT_THROW(Archiver::init(), AssertionFailure);
}

TEST_F(ArchiverTest, countsAndRemovesItems)
{
    using namespace FileManagerArchiverConvenience;
    fs::create_symlink(folder / "a", folder / "link");
    fs::create_symlink("/none", folder / "dangling");
    writeFile(folder / "a/other", "");
    EXPECT_EQ(numberOfFilesAtPath(folder / "a"), 3);
    EXPECT_EQ(
        numberOfFilesAtPaths({folder / "a", folder / "a/one", folder / "none", folder / "link"}),
        6);
    EXPECT_EQ(numberOfFilesAtPaths({}), 0);
    EXPECT_FALSE(removeItemAtPath(folder / "none"));
    EXPECT_FALSE(removeItemAtPath(folder / "dangling"));
    EXPECT_TRUE(removeItemAtPath(folder / "link"));
    EXPECT_TRUE(removeItemAtPath(folder / "a"));
    EXPECT_FALSE(fs::exists(folder / "a"));
}
