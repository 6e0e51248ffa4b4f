// The engine with stand-ins for its tools: what they are asked, and what the delegate is told.

#include "platform/base/process/Task.h"
#include "tests/engine/EngineTest.h"
#include "tests/engine/FailingCalls.h"

using ArchiverTest = EngineTest;

TEST_F(ArchiverTest, runsEachToolInItsFolderOnLinksOrCopies)
{
    writeFile(folder / "d/one", "another");
    writeFile(folder / "bundle/inner", "inner");
    chmod((folder / "bundle").c_str(), S_IRUSR | S_IXUSR); // and so is its copy
    plan(R"sh([ "${0##*/}" = zip ] || cd Demo; for f in *; do
        same=$([ "$f" -ef "$TMPDIR/b/two" ] && echo same)
        echo "$f|$(readlink "$f")|$same|$(cat "$f" 2>/dev/null || ls "$f")"
        done >"$TMPDIR/staged")sh");
    // The archive of each type, what is counted, the tool's runs and what it finds staged.
    const std::tuple<int, const char*, Lines, Lines, Lines> cases[] = {
        {ArchiveTypePlainZip, "out/Demo.zip", {"files 5"},
            {"zip|@/a|-6|-y|-r|@/scratch/Demo.zip|./one|-x|*/.DS_Store",
                "zip|@/d|-6|-y|-r|@/scratch/Demo.zip|./one|-x|*/.DS_Store",
                "zip|@|-6|-y|-r|@/scratch/Demo.zip|./bundle|-x|*/.DS_Store",
                "zip|@/b|-6|-y|-r|@/scratch/Demo.zip|./two|-x|*/.DS_Store"},
            {"two||same|b/two"}},
        {ArchiveTypeTarGz, "out/Demo.tar.gz", {"without " + (folder / "d/one").native(), "files 4"},
            {"tar|@/scratch|--exclude|.DS_Store|-zhcf|@/out/Demo.tar.gz|Demo"},
            {"bundle|@/bundle||inner", "one|@/a/one||a/one", "two|@/b/two|same|b/two"}},
        {ArchiveTypeMacZip, "out/Demo.zip", {"files 5"},
            {"ditto|@/scratch|-V|-c|-k|--keepParent|--sequesterRsrc|./Demo|@/out/Demo.zip"},
            {"bundle|||inner", "one|||another", "two||same|b/two"}},
    };
    for (auto [type, archive, expected, runs, staged] : cases) {
        SCOPED_TRACE(type);
        renew();
        auto request = job(type);
        request.files = {folder / "a/one", folder / "d/one", folder / "bundle", folder / "b/two"};
        if (type != ArchiveTypePlainZip)
            writeFile(folder / "scratch/Demo/of an earlier job", "");
        EXPECT_EQ(archiver->archiveFiles(request), folder / archive);
        EXPECT_EQ(linesIn("record"), runs);
        EXPECT_EQ(linesIn("staged"), staged);
        expected.resize(expected.size() + runs.size(), "task 0");
        expected.emplace_back("completed 0");
        EXPECT_EQ(told, expected);
        EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    }
    EXPECT_EQ(linesIn("environment"), Lines{"TMPDIR=@"});
    EXPECT_EQ(readFile(folder / "a/one"), "a/one");
}

TEST_F(ArchiverTest, withoutAUsableNameFolderOrTypeNothingHappens)
{
    const std::tuple<int, const char*, const char*> cases[]
        = {{ArchiveTypePlainZip, "", "out"}, {ArchiveTypeTarGz, "Demo", ""},
            // These would be staged in or above the scratch folder.
            {ArchiveTypeTarGz, "..", "out"}, {ArchiveTypeMacZip, ".", "out"}};
    for (const auto& [type, name, to] : cases)
        EXPECT_EQ(archiver->archiveFiles({{folder / "a"}, name, type, true, 6, to}), std::nullopt);
    EXPECT_EQ(told, Lines{});
    EXPECT_EQ(archiver->archiveFiles(job(7)), std::nullopt);
}

TEST_F(ArchiverTest, aPlainZipReplacesAnOlderArchiveOrTellsWhyItCannot)
{
    plan(R"(printf %s "$5" >>"$4")");
    const fs::path archive = folder / "out/Demo.zip";
    writeFile(archive, "older");
    writeFile(folder / "scratch/Demo.zip", "of a job that was killed");
    auto request = job(ArchiveTypePlainZip);
    EXPECT_EQ(archiver->archiveFiles(request), archive);
    EXPECT_EQ(readFile(archive), "./one./two");
    EXPECT_EQ(shownAlerts(), Lines{});
    letFail({{SYS_unlinkat, EACCES}}, [&] { EXPECT_EQ(archiver->archiveFiles(request), archive); });
    EXPECT_EQ(shownAlerts(),
        Lines{"Error: Unable to replace existing file at '" + archive.native() + "' [OK]"});
    const EnvironmentVariable home("HOME", folder.path());
    request.toFolder = "~/out"; // is expanded for other types only
    EXPECT_EQ(archiver->archiveFiles(request), "~/out/Demo.zip");
    EXPECT_EQ(shownAlerts(), Lines{"Error: Unable to write to '~/out/Demo.zip' [OK]"});
    request.type = ArchiveTypeTarGz;
    EXPECT_EQ(archiver->archiveFiles(request), folder / "out/Demo.tar.gz");
}

TEST_F(ArchiverTest, aCancelEndsOneToolAndAnAbandonedJobDeliversNothing)
{
    const std::string begins = R"([ "$1" != -6 ] || printf x >>"$4"; : >"$TMPDIR/started"; )";
    const std::string stays = begins + "exec sleep 30";
    const std::string heedsNothing = begins + "trap '' INT; sleep 60; sleep 60"; // is killed
    // Whether a job is abandoned, the tool's script (none: before a tool starts), what the delegate
    // is told and which of two older archives are left.
    const std::tuple<int, bool, std::string, Lines, Lines> cases[] = {
        {ArchiveTypePlainZip, false, stays, {"files 2", "task 130", "completed 1"},
            {"Demo.tar.gz"}},
        {ArchiveTypeTarGz, false, stays, {"files 3", "task 130", "completed 0"}, {"Demo.zip"}},
        {ArchiveTypeMacZip, false, stays, {"files 3", "task 130", "completed 0"}, {"Demo.tar.gz"}},
        {ArchiveTypePlainZip, true, heedsNothing, {"files 2", "task 137", "completed 1"},
            {"Demo.tar.gz", "Demo.zip"}},
        {ArchiveTypePlainZip, true, "", {"files 2", "completed 1"}, {"Demo.tar.gz", "Demo.zip"}},
        {ArchiveTypeTarGz, true, "", {"files 1", "completed 0"}, {"Demo.tar.gz", "Demo.zip"}},
    };
    for (const auto& [type, isAbandoned, script, expected, left] : cases) {
        SCOPED_TRACE(testing::Message() << type << isAbandoned << script);
        renew();
        for (const char* name : {"out/Demo.tar.gz", "out/Demo.zip"})
            writeFile(folder / name, "older");
        plan(script);
        script.empty() ? archiver->abandon() : archiver->cancel(); // of no job: forgotten
        if (script.empty())
            archiver->archiveFiles(job(type));
        else
            archiveAndEnd(job(type), isAbandoned);
        EXPECT_EQ(told, expected);
        EXPECT_EQ(namesIn(folder / "out"), left);
        EXPECT_TRUE(fs::is_empty(folder / "scratch"));
        const bool hasLost = type == ArchiveTypePlainZip && !isAbandoned;
        EXPECT_EQ(shownAlerts().size(), hasLost ? 1U : 0U);
    }
}

TEST_F(ArchiverTest, takesNamesAndCountsFromChunks)
{
    const std::tuple<const char*, int, Lines> cases[] = {// A chunk, its lines and the name in it.
        {"  adding: a\n  adding: b (deflated 5%)\n", 2, {"a\n  adding: b (deflated 5%)\n"}},
        {"copying file ./a ... \n", 1, {"./a ... "}}, {"copying symlink ", 0, {""}},
        {" copying file ./a\n", 1, {"foo"}}, {"copying symlink b copying file a\n", 1, {"foo"}},
        {"one\ntwo\nthree", 2, {}}, {"  adding: caf\xc3\xa9\n", 0, {}}};
    for (const auto& [chunk, lines, added] : cases) {
        int progress = 0;
        Lines names;
        ArchiverDelegate delegate{.progressBy = [&](int number) { progress += number; }};
        archiver->setDelegate(delegate);
        archiver->taskDataAvailable(chunk);
        EXPECT_EQ(progress, lines) << chunk;
        delegate.archiverDidAddFile = [&](const std::string& name) { names.push_back(name); };
        archiver->setDelegate(delegate);
        archiver->taskDataAvailable(chunk);
        EXPECT_EQ(names, added) << chunk;
        EXPECT_EQ(progress, lines) << chunk;
    }
}

TEST_F(ArchiverTest, aToolThatCannotBeLaunchedLeavesNothing)
{
    Bundle::setMain(Bundle("/none"));
    EXPECT_THROW(archiver->archiveFiles(job(ArchiveTypeTarGz)), LaunchFailure);
    EXPECT_EQ(Archiver::missingTool(ArchiveTypeMacZip), "/usr/bin/ditto");
    writeFile(folder / "out/Demo.dmg", "older");
    EXPECT_EQ(archiver->archiveFiles(job(ArchiveTypeDiskImage)), std::nullopt);
    archiver->cancel(); // the task that was never launched
    EXPECT_TRUE(fs::is_empty(folder / "scratch"));
    EXPECT_EQ(namesIn(folder / "out"), Lines{"Demo.dmg"});
}

TEST_F(ArchiverTest, decidesOnceThatZipIsTheSystems)
{
    const auto isTheSystems = [](const char* bundle) {
        Bundle::setMain(Bundle(bundle));
        return Archiver::zipPath() == "/usr/bin/zip";
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process in which nothing has been decided
    EXPECT_EXIT(
        std::_Exit(isTheSystems("/none") && isTheSystems(PARCELO_TEST_STANDINS_DIR) ? 0 : 1),
        testing::ExitedWithCode(0), "");
}
