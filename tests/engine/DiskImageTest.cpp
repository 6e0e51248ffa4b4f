// A disk image, with stand-ins for the tools that play a whole session and record what they are
// asked.

#include "platform/base/bundle/Bundle.h"
#include "shared/Library/Archiver/Archiver.h"
#include "tests/support/Files.h"
#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <sstream>

#include <gtest/gtest.h>

using namespace support;
namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace
{

class DiskImage : public testing::Test
{
protected:
    DiskImage()
    {
        fs::create_directories(folder / "bundle/Contents/Resources");
        for (const char* tool : {"hdiutil", "ditto"}) // du is the system's own
            fs::create_symlink(
                PARCELO_TEST_STANDINS_DIR "/tool", folder / "bundle/Contents/Resources" / tool);
        Bundle::setMain(Bundle(folder / "bundle"));
        setenv("TMPDIR", folder.path().c_str(), 1);
        writeFile(folder / "in/one", randomBytes(4'000'000, 1));
        writeFile(folder / "in/a folder/two", "two");
        fs::create_directory(folder / "work");
        fs::create_directory(folder / "out");
        writeFile(folder / "plan", R"(for last; do :; done
            case "$1" in
            create) : >"$last.sparseimage" ;;
            mount) cat "$TMPDIR/listing" ;;
            convert) ls -A >"$TMPDIR/during"; printf made >>"$last.dmg" ;;
            esac
            exit 1
            )");
    }
    ~DiskImage() override
    {
        Bundle::setMain(former);
        unsetenv("TMPDIR");
    }

    // What the tool lists of a mounted image, an entry for each hint.
    void lists(const Lines& hints) const
    {
        std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>
            <plist version="1.0"><dict><key>system-entities</key><array>)";
        for (const std::string& hint : hints)
            text.append("<dict><key>content-hint</key><string>")
                .append(hint)
                .append("</string><key>dev-entry</key><string>/dev/")
                .append(hint)
                .append("</string></dict>");
        writeFile(folder / "listing", text + "</array></dict></plist>\n");
    }

    std::optional<fs::path> make(
        const std::string& name, const std::optional<std::string>& password)
    {
        fs::remove(folder / "record");
        return archiver->archiveFiles({.files = {folder / "in/one", folder / "in/a folder"},
            .name = name,
            .type = ArchiveTypeDiskImage,
            .toFolder = folder / "out",
            .withPassword = password});
    }

    // The runs, sorted where the order is the file system's: "TOOL|FOLDER|ARGUMENTS…".
    Lines runs() const
    {
        std::istringstream record(readFile(folder / "record"));
        Lines lines;
        for (std::string line; std::getline(record, line);)
            lines.push_back(line);
        std::sort(lines.begin() + 2, lines.begin() + 4);
        return lines;
    }
    Lines expected(const std::string& name, const std::string& sectors, const std::string& leave,
        const std::string& encryption) const
    {
        const std::string out = "hdiutil|" + (folder / "out").native() + "|";
        const std::string copy = "ditto|" + fs::current_path().native() + "|-rsrcFork|";
        const std::string in = folder / "in";
        const std::string volume = "|/Volumes/" + name;
        return {out + "create|-sectors|" + sectors + "|-fs|HFS+|-type|SPARSE|-volname|" + name + "|"
                + name,
            out + "mount|" + name + ".sparseimage|-plist",
            copy + in + "/a folder" + volume + "/a folder", copy + in + "/one" + volume + "/one",
            out + leave,
            out + "convert|" + name + ".sparseimage|-format|UDZO|" + encryption + "-o|" + name};
    }

    const Bundle former = Bundle::main();
    const TestFolder folder;
    const std::unique_ptr<Archiver> archiver = Archiver::initWithWorkingDirectory(folder / "work");
};

} // namespace

TEST_F(DiskImage, runsEachToolWithItsArgumentsInItsFolder)
{
    fs::create_directory(folder / "measured");
    for (const char* item : {"one", "a folder"})
        fs::create_symlink(folder / "in" / item, folder / "measured" / item);
    const int size = std::stoi(run({"/usr/bin/du", "-Ls", folder / "measured"}).out);
    EXPECT_EQ(archiver->duSizeForPath(folder / "measured"), size);
    EXPECT_EQ(archiver->duSizeForPath(folder / "none"), 0);
    const std::string sectors = std::to_string(3 * size);
    struct Case {
        const char* name;
        const char* withoutExtension;
        std::optional<std::string> password;
        Lines hints;
        const char* leave;
        const char* encryption;
    };
    const Case cases[] = {
        {"Demo", "Demo", {}, {"GUID_partition_scheme", "Apple_HFS"},
            "detach|/dev/GUID_partition_scheme", ""},
        {"My.Files", "My", "pass word", {"Apple_HFS", "Apple_partition_scheme"},
            "detach|/dev/Apple_partition_scheme", "-encryption|-passphrase|pass word|"},
        {"a.b.c", "a.b", "", {"Apple_HFS"}, "unmount|/Volumes/a.b", "-encryption|-passphrase||"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const std::string image = std::string(each.withoutExtension) + ".dmg";
        writeFile(folder / "out" / image, "older");
        lists(each.hints);
        EXPECT_EQ(make(each.name, each.password), folder / "out" / image);
        EXPECT_EQ(runs(), expected(each.withoutExtension, sectors, each.leave, each.encryption));
        EXPECT_EQ(readFile(folder / "during"),
            std::string(each.withoutExtension) + ".sparseimage\nmount.plist\n");
        EXPECT_EQ(namesIn(folder / "out"), Lines{image});
        EXPECT_EQ(readFile(folder / "out" / image), "made");
        EXPECT_TRUE(fs::is_empty(folder / "work"));
        fs::remove(folder / "out" / image);
    }
}

TEST_F(DiskImage, withADelegateHasTheSmallestSizeAndIsUnmountedByItsPath)
{
    lists({"GUID_partition_scheme"});
    Lines told;
    archiver->setDelegate(ArchiverDelegate{
        .setNumberOfFiles = [&](int count) { told.push_back("files " + std::to_string(count)); },
        .taskCompletedWithStatusCode
        = [&](int status) { told.push_back("task " + std::to_string(status)); },
        .archiverCompletedWithStatus
        = [&](int status) { told.push_back("completed " + std::to_string(status)); }});
    EXPECT_EQ(make("Demo", std::nullopt), folder / "out/Demo.dmg");
    EXPECT_EQ(runs(), expected("Demo", "10240", "unmount|/Volumes/Demo", ""));
    EXPECT_EQ(readFile(folder / "during"), "Demo.sparseimage\n");
    EXPECT_EQ(told,
        (Lines{"files 3", "task 0", "task 1", "task 1", "task 1", "task 1", "task 1", "task 1",
            "completed 0"}));
}

TEST_F(DiskImage, withoutOneOfItsToolsNothingIsTouched)
{
    writeFile(folder / "out/Demo.dmg", "older");
    for (const char* tool : {"ditto", "hdiutil"}) { // in the end both, of which the first is told
        fs::remove(folder / "bundle/Contents/Resources" / tool);
        EXPECT_EQ(Archiver::missingTool(ArchiveTypeDiskImage), std::string("/usr/bin/") + tool);
        EXPECT_EQ(make("Demo", std::nullopt), std::nullopt);
    }
    EXPECT_FALSE(fs::exists(folder / "record"));
    EXPECT_EQ(readFile(folder / "out/Demo.dmg"), "older");
}

TEST_F(DiskImage, anAbandonedOneIsUnmountedAndGoes)
{
    struct Case {
        const char* during;
        Lines steps; // of hdiutil
    };
    const Case cases[] = {{"create", {"create"}}, {"mount", {"create", "mount", "unmount"}},
        {"convert", {"create", "mount", "unmount", "convert"}}};
    const std::string plan = readFile(folder / "plan");
    for (const Case& each : cases) {
        SCOPED_TRACE(each.during);
        writeFile(folder / "plan",
            "[ $1 != " + std::string(each.during) + R"( ] || { : >"$TMPDIR/started"; sleep 0.5; }
            )" + plan);
        const auto one = Archiver::initWithWorkingDirectory(folder / "work");
        std::jthread ender([&] {
            EXPECT_TRUE(waitUntil([&] { return fs::exists(folder / "started"); }));
            one->abandon();
        });
        one->archiveFiles({.files = {folder / "in/one"},
            .name = "Demo",
            .type = ArchiveTypeDiskImage,
            .toFolder = folder / "out"});
        ender.join();
        Lines steps;
        std::istringstream record(readFile(folder / "record"));
        for (std::string line; std::getline(record, line);)
            if (line.starts_with("hdiutil|"))
                steps.push_back(line.substr(line.find('|', 8) + 1));
        for (std::string& step : steps)
            step.resize(step.find('|'));
        EXPECT_EQ(steps, each.steps);
        EXPECT_EQ(namesIn(folder / "out"), Lines());
        fs::remove(folder / "record");
        fs::remove(folder / "started");
    }
}
