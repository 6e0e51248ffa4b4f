// The engine with stand-ins for its tools: what they are asked, and what the delegate is told.

#include "platform/base/process/Task.h"
#include "platform/base/seams/AssertionHandler.h"
#include "tests/engine/EngineTest.h"
#include "tests/engine/FailingCalls.h"

namespace
{

using ArchiverTest = EngineTest;

constexpr const char* startAndStay
    = R"([ "${0##*/}" != zip ] || printf x >>"$4"; : >"$TMPDIR/started"; exec sleep 30)";

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
        EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    }
    EXPECT_EQ(linesIn("environment"), Lines{"TMPDIR=@"});
}

TEST_F(ArchiverTest, withoutAUsableNameOrFolderNothingHappens)
{
    struct Case {
        int type;
        std::optional<std::string> name;
        std::optional<fs::path> toFolder;
    };
    const fs::path out = folder / "out";
    const Case cases[] = {{ArchiveTypePlainZip, {}, out}, {ArchiveTypePlainZip, "", out},
        {ArchiveTypePlainZip, "Demo", {}}, {ArchiveTypeTarGz, "", out},
        {ArchiveTypeTarGz, "Demo", ""}, {ArchiveTypeTarGz, "..", out},
        {ArchiveTypeMacZip, ".",
            out}}; // the last two would be staged in or above the scratch folder
    writeFile(folder / "scratch/kept", "kept");
    for (const Case& each : cases) {
        auto request = job(each.type);
        request.name = each.name;
        request.toFolder = each.toFolder;
        EXPECT_EQ(archiver->archiveFiles(request), std::nullopt);
    }
    EXPECT_EQ(told, Lines{});
    EXPECT_EQ(runs(), Lines{});
    EXPECT_EQ(namesIn(folder / "scratch"), Lines{"kept"});
}

TEST_F(ArchiverTest, aPlainZipReplacesAnOlderArchiveOrTellsWhyItCannot)
{
    plan(R"(printf %s "$5" >>"$4")");
    const fs::path archive = folder / "out/Demo.zip";
    const fs::path temporary = folder / "scratch/Demo.zip";
    writeFile(archive, "older");
    writeFile(temporary, "of a job that was killed");
    auto request = job(ArchiveTypePlainZip);
    EXPECT_EQ(archiver->archiveFiles(request), archive);
    EXPECT_EQ(readFile(archive), "./one./two./three");
    EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    EXPECT_EQ(shownAlerts(), Lines{});

    inThread([&] {
        letFail(SYS_unlinkat, EACCES);
        EXPECT_EQ(archiver->archiveFiles(request), archive);
    });
    EXPECT_EQ(shownAlerts(),
        Lines{"Error: Unable to replace existing file at '" + archive.native() + "' [OK||]"});
    EXPECT_EQ(readFile(archive), readFile(temporary));

    const std::string failure = "Error: Unable to write to '";
    setenv("HOME", folder.path().c_str(), 1);
    request.toFolder = "~/out"; // is expanded for other types only
    EXPECT_EQ(archiver->archiveFiles(request), "~/out/Demo.zip");
    EXPECT_EQ(shownAlerts(), Lines{failure + "~/out/Demo.zip' [OK||]"});
    request.type = ArchiveTypeTarGz;
    EXPECT_EQ(archiver->archiveFiles(request), folder / "out/Demo.tar.gz");

    request = job(ArchiveTypePlainZip);
    request.files.clear(); // nothing comes in the older one's place
    told.clear();
    EXPECT_EQ(archiver->archiveFiles(request), archive);
    EXPECT_EQ(told, (Lines{"files 0", "completed 0"}));
    EXPECT_EQ(shownAlerts(), Lines{failure + archive.native() + "' [OK||]"});
    EXPECT_FALSE(fs::exists(archive));
}

TEST_F(ArchiverTest, aCancelEndsTheToolAndOfAPlainZipAlsoTheJob)
{
    struct Case {
        int type;
        Lines told;
        std::size_t alerts;
    };
    const Case cases[] = {{ArchiveTypePlainZip, {"files 3", "task 130", "completed 1"}, 1},
        {ArchiveTypeTarGz, {"files 4", "task 130", "completed 0"}, 0},
        {ArchiveTypeMacZip, {"files 4", "task 130", "completed 0"}, 0}};
    plan(startAndStay);
    for (const Case& each : cases) {
        SCOPED_TRACE(each.type);
        writeFile(folder / "out/Demo.zip", "older");
        told.clear();
        archiver->cancel(); // of no job: forgotten
        archiveDuring(job(each.type), [&] {
            archiver->cancel();
            return false;
        });
        EXPECT_EQ(told, each.told);
        EXPECT_TRUE(fs::is_empty(folder / "scratch"));
        EXPECT_EQ(fs::exists(folder / "out/Demo.zip"), each.type == ArchiveTypeTarGz);
        EXPECT_EQ(shownAlerts().size(), each.alerts);
    }
    EXPECT_EQ(runs().size(), 3U);
}

TEST_F(ArchiverTest, anAbandonedJobDeliversNothingAndLeavesNothing)
{
    struct Case {
        int type;
        const char* plan; // nothing: abandoned before the tool starts
    };
    const Case cases[] = {{ArchiveTypePlainZip, nullptr}, {ArchiveTypeTarGz, nullptr},
        {ArchiveTypeMacZip, nullptr}, {ArchiveTypePlainZip, startAndStay},
        {ArchiveTypePlainZip, // does not heed, and is killed
            R"(printf x >>"$4"; : >"$TMPDIR/started"; trap '' INT; sleep 60; sleep 60)"}};
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::Message() << each.type << " " << (each.plan ? each.plan : "before"));
        fs::remove(folder / "record");
        archiver = Archiver::initWithWorkingDirectory(folder / "scratch");
        archiver->setDelegate(noting());
        for (const char* name : {"out/Demo.zip", "out/Demo.tar.gz"})
            writeFile(folder / name, "older");
        if (each.plan) {
            plan(each.plan);
            archiveDuring(job(each.type), [&] {
                archiver->abandon();
                return true;
            });
        } else {
            archiver->abandon();
            archiver->archiveFiles(job(each.type));
        }
        EXPECT_EQ(runs().size(), each.plan ? 1U : 0U);
        EXPECT_TRUE(fs::is_empty(folder / "scratch"));
        EXPECT_EQ(readFile(folder / "out/Demo.zip"), "older");
        EXPECT_EQ(readFile(folder / "out/Demo.tar.gz"), "older");
        EXPECT_EQ(shownAlerts(), Lines{});
    }
}

// Above all for the thread sanitizer.
TEST_F(ArchiverTest, manyCancelsLeaveAnEngineThatWorks)
{
    plan(R"(printf %s "$5" >>"$4")");
    {
        std::jthread canceller([&](const std::stop_token& ended) {
            while (!ended.stop_requested())
                archiver->cancel();
        });
        for (int round = 0; round < 10; ++round)
            archiver->archiveFiles(job(round % 2 == 0 ? ArchiveTypePlainZip : ArchiveTypeTarGz));
    }
    archiver->archiveFiles(job(ArchiveTypePlainZip));
    EXPECT_EQ(readFile(folder / "out/Demo.zip"), "./one./two./three");
}

TEST_F(ArchiverTest, stagesLinksOrCopies)
{
    writeFile(folder / "d/one", "another");
    writeFile(folder / "bundle/inner", "inner");
    plan(R"sh(cd Demo; for f in *; do
        same=$([ "$f" -ef "$TMPDIR/b/two" ] && echo same)
        echo "$f|$(readlink "$f")|$same|$(cat "$f" 2>/dev/null || ls "$f")"
        done >"$TMPDIR/staged")sh");
    const std::pair<int, Lines> cases[] = {
        {ArchiveTypeTarGz,
            {"bundle|@/bundle||inner", "one|@/a/one||a/one", "two|@/b/two|same|b/two"}},
        {ArchiveTypeMacZip, {"bundle|||inner", "one|||another", "two||same|b/two"}},
    };
    for (const auto& [type, staged] : cases) {
        auto request = job(type);
        request.files = {folder / "a/one", folder / "d/one", folder / "bundle", folder / "b/two"};
        archiver->archiveFiles(request);
        EXPECT_EQ(linesIn("staged"), staged);
    }
    EXPECT_EQ(told[0], "files 4");
    EXPECT_EQ(told[3], "files 5");
    EXPECT_EQ(readFile(folder / "a/one"), "a/one");

    fs::create_directory(folder / "aside_511800");
    fs::create_directory(folder / "aside");
    Archiver::removeTmpFolder(folder / "aside");
    EXPECT_TRUE(fs::exists(folder / "aside_511801"));
}

TEST_F(ArchiverTest, collectsOutputWithoutADelegateAndStreamsItWithOne)
{
    plan("echo out; echo err >&2; exit 3");
    const auto tar = Archiver::tarPath();
    int status = -1;
    archiver->setDelegate(std::nullopt);
    EXPECT_EQ(archiver->runCommand(tar, {"x"}, std::nullopt, &status), "out\nerr\n");
    EXPECT_EQ(status, 3);

    makeFifo(folder / "gate");
    plan("echo one; read -r go <\"$TMPDIR/gate\"; printf 'two\\nthree\\n'");
    std::string output;
    auto delegate = noting();
    delegate.toolOutput = [&](std::string_view bytes) {
        if (output.empty())
            writeFile(folder / "gate", "go\n"); // the tool still runs
        output += bytes;
    };
    archiver->setDelegate(delegate);
    status = -1;
    EXPECT_EQ(archiver->runCommand(tar, {}, folder / "a", &status), std::nullopt);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(output, "one\ntwo\nthree\n");
    EXPECT_EQ(told, (Lines{"progress 1", "progress 2", "task 0"}));
}

TEST_F(ArchiverTest, takesNamesAndCountsFromChunks)
{
    struct Case {
        std::string chunk;
        const char* added; // nothing: no name found
        int lines;
    };
    const Case cases[] = {
        {"  adding: a\n  adding: b (deflated 5%)\n", "a\n  adding: b (deflated 5%)\n", 2},
        {"copying file ./a ... \n", "./a ... ", 1},
        {"copying symlink x\n", "x", 1},
        {"copying file ", "", 0},
        {" copying file ./a\n", "foo", 1},
        {"copying symlink b copying file a\n", "foo", 1},
        {"one\ntwo\nthree", nullptr, 2},
        {"  adding: caf\xc3\xa9\n", nullptr, 0},
    };
    plan(R"(cat "$TMPDIR/chunk")");
    for (const Case& each : cases) {
        SCOPED_TRACE(each.chunk);
        writeFile(folder / "chunk", each.chunk);
        const auto toldOfRun = [&](const ArchiverDelegate& delegate) {
            archiver->setDelegate(delegate);
            archiver->runCommand(Archiver::tarPath(), {}, std::nullopt, nullptr);
            EXPECT_EQ(told.back(), "task 0");
            told.pop_back();
            return std::exchange(told, {});
        };
        auto delegate = noting();
        EXPECT_EQ(toldOfRun(delegate),
            each.lines > 0 ? Lines{"progress " + std::to_string(each.lines)} : Lines{});
        delegate.archiverDidAddFile
            = [this](const std::string& name) { told.push_back("added " + name); };
        EXPECT_EQ(toldOfRun(delegate),
            each.added != nullptr ? Lines{std::string("added ") + each.added} : Lines{});
    }
}

TEST_F(ArchiverTest, aToolThatCannotBeLaunchedLeavesNothingAndAnEngineThatWorks)
{
    plan(R"(printf x >>"$4"; rm -rf "$TMPDIR/gone")"); // the folder of the second item
    writeFile(folder / "gone/two", "two");
    auto zip = job(ArchiveTypePlainZip);
    zip.files = {folder / "a/one", folder / "gone/two", folder / "gone/two"};
    EXPECT_THROW(archiver->archiveFiles(zip), LaunchFailure);
    const Bundle former = Bundle::main();
    Bundle::setMain(Bundle(folder / "none")); // no tar
    EXPECT_THROW(archiver->archiveFiles(job(ArchiveTypeTarGz)), LaunchFailure);
    EXPECT_EQ(Archiver::missingTool(ArchiveTypeMacZip), "/usr/bin/ditto");
    told.clear();
    EXPECT_EQ(archiver->archiveFiles(job(ArchiveTypeMacZip)), std::nullopt);
    EXPECT_EQ(told, (Lines{"files 4", "completed 0"}));
    Bundle::setMain(former);
    EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    archiver->cancel();
    EXPECT_EQ(archiver->archiveFiles(job(ArchiveTypeTarGz)), folder / "out/Demo.tar.gz");
}

TEST_F(ArchiverTest, decidesOnceWhereZipIs)
{
    const auto isKept = [](const Bundle& first, const fs::path& expected) {
        Bundle::setMain(first);
        const fs::path zip = Archiver::zipPath();
        Bundle::setMain(Bundle("/none/other"));
        return zip == expected && Archiver::zipPath() == expected;
    };
    // In processes of their own, in which nothing has been decided.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::_Exit(isKept(Bundle("/none"), "/usr/bin/zip") ? 0 : 1),
        testing::ExitedWithCode(0), "");
    const Bundle standIns = Bundle::main();
    EXPECT_EXIT(std::_Exit(isKept(standIns, *standIns.pathForResource("zip")) ? 0 : 1),
        testing::ExitedWithCode(0), "");
}

TEST_F(ArchiverTest, reportsMisuseByFileAndLine)
{
    Lines reports;
    const auto former
        = AssertionHandler::setCurrentHandler([&](const AssertionHandler::Report& report) {
              reports.push_back(
                  report.file + ":" + std::to_string(report.lineNumber) + " " + report.description);
          });
    EXPECT_EQ(Archiver::init(), nullptr);
    EXPECT_NE(Archiver::initWithWorkingDirectory(std::nullopt), nullptr);
    EXPECT_EQ(archiver->archiveFile({.file = "/x", .type = ArchiveTypePlainZip, .toFolder = "/y"}),
        std::nullopt);
    AssertionHandler::setCurrentHandler(former);
    const std::string file = "shared/Library/Archiver:";
    EXPECT_EQ(reports,
        (Lines{file + "657 Archiver. Use initWithWorkingDirectory: instead",
            file + "664 initWithWorkingDirectory: workingDirectory must not be nil",
            file + "702 Should not get here!!"}));
    EXPECT_THROW(Archiver::init(), AssertionFailure);
}
