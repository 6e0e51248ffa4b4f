// A disk image, with stand-ins for the tools that play a whole session.

#include "tests/engine/EngineTest.h"
#include "tests/support/Run.h"

#include <algorithm>

namespace
{

constexpr const char* session = R"(for last; do :; done
    case "$1" in
    create) : >"$last.sparseimage" ;;
    mount) cat "$TMPDIR/listing" ;;
    convert) ls -A >"$TMPDIR/during"; printf made >>"$last.dmg" ;;
    esac
    [ -f "$TMPDIR/stay in" ] && read -r stay <"$TMPDIR/stay in"
    [ "$1" != "$stay" ] || { : >"$TMPDIR/started"; exec sleep 30; }
    exit 1)";

class DiskImage : public EngineTest
{
protected:
    DiskImage()
    {
        Bundle::setMain(standIns(folder / "bundle", {"hdiutil", "ditto"})); // du is the system's
        writeFile(folder / "in/one", randomBytes(4'000'000, 1));
        writeFile(folder / "in/a folder/two", "two");
        lists(folder / "listing", {"GUID_partition_scheme", "Apple_HFS"});
        plan(session);
    }

    // What the tool lists of a mounted image, an entry for each hint.
    static void lists(const fs::path& file, const Lines& hints)
    {
        PropertyList::Array entities;
        for (const std::string& hint : hints)
            entities.push_back(
                PropertyList::Dictionary{{"content-hint", hint}, {"dev-entry", "/dev/" + hint}});
        EXPECT_TRUE(PropertyList::writeToFile({{"system-entities", entities}}, file));
    }

    Archiver::ArchiveFiles request(
        const std::string& name, const std::optional<std::string>& password = {}) const
    {
        return {.files = {folder / "in/one", folder / "in/a folder"},
            .name = name,
            .type = ArchiveTypeDiskImage,
            .toFolder = folder / "out",
            .withPassword = password};
    }

    // The runs, sorted where the order is the file system's.
    Lines runs() const
    {
        Lines lines = linesIn("record");
        std::sort(
            std::min(lines.begin() + 2, lines.end()), std::min(lines.begin() + 4, lines.end()));
        return lines;
    }
    static Lines expected(const std::string& name, int sectors, const std::string& leave,
        const std::string& encryption)
    {
        const std::string tool = "hdiutil|@/out|";
        const std::string copy = "ditto|" + fs::current_path().native() + "|-rsrcFork|@/in/";
        const std::string volume = "|/Volumes/" + name;
        return {tool + "create|-sectors|" + std::to_string(sectors)
                + "|-fs|HFS+|-type|SPARSE|-volname|" + name + "|" + name,
            tool + "mount|" + name + ".sparseimage|-plist",
            copy + "a folder" + volume + "/a folder", copy + "one" + volume + "/one", tool + leave,
            tool + "convert|" + name + ".sparseimage|-format|UDZO|" + encryption + "-o|" + name};
    }
};

} // namespace

TEST_F(DiskImage, runsEachToolWithItsArgumentsInItsFolder)
{
    fs::create_directory(folder / "measured");
    for (const char* item : {"one", "a folder"})
        fs::create_symlink(folder / "in" / item, folder / "measured" / item);
    const int sectors = 3 * std::stoi(run({"/usr/bin/du", "-Ls", folder / "measured"}).out);
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
    archiver->setDelegate(std::nullopt);
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const std::string name = each.withoutExtension;
        fs::remove(folder / "record");
        writeFile(folder / "out" / (name + ".dmg"), "older");
        writeFile(folder / "out/mount.plist", "of a job that was killed");
        lists(folder / "listing", each.hints);
        EXPECT_EQ(archiver->archiveFiles(request(each.name, each.password)),
            folder / "out" / (name + ".dmg"));
        EXPECT_EQ(runs(), expected(name, sectors, each.leave, each.encryption));
        EXPECT_EQ(readFile(folder / "out" / (name + ".dmg")), "made");
        EXPECT_EQ(linesIn("during"), (Lines{name + ".sparseimage", "mount.plist"}));
        EXPECT_EQ(namesIn(folder / "out"), Lines{name + ".dmg"});
        EXPECT_TRUE(fs::is_empty(folder / "scratch"));
        fs::remove(folder / "out" / (name + ".dmg"));
    }
}

TEST_F(DiskImage, withADelegateHasTheSmallestSizeAndNoListingOfItsOwn)
{
    const Lines toldOfAll{"files 3", "task 0", "task 1", "task 1", "task 1", "task 1", "task 1",
        "task 1", "completed 0"};
    archiver->archiveFiles(request("Demo"));
    EXPECT_EQ(runs(), expected("Demo", 10240, "unmount|/Volumes/Demo", ""));
    std::erase_if(told, [](const std::string& line) { return line.starts_with("progress"); });
    EXPECT_EQ(told, toldOfAll);

    fs::remove(folder / "record");
    lists(folder / "out/mount.plist", {"GUID_partition_scheme"}); // one that was there counts
    archiver->archiveFiles(request("Demo"));
    EXPECT_EQ(runs(), expected("Demo", 10240, "detach|/dev/GUID_partition_scheme", ""));
    EXPECT_EQ(namesIn(folder / "out"), Lines{"Demo.dmg"});
}

TEST_F(DiskImage, withoutOneOfItsToolsNothingIsTouched)
{
    writeFile(folder / "out/Demo.dmg", "older");
    for (const char* tool : {"ditto", "hdiutil"}) { // in the end both, of which the first is told
        fs::remove(folder / "bundle/Contents/Resources" / tool);
        EXPECT_EQ(Archiver::missingTool(ArchiveTypeDiskImage), std::string("/usr/bin/") + tool);
        EXPECT_EQ(archiver->archiveFiles(request("Demo")), std::nullopt);
    }
    EXPECT_FALSE(fs::exists(folder / "record"));
    EXPECT_EQ(readFile(folder / "out/Demo.dmg"), "older");
}

TEST_F(DiskImage, cancelGoesOnWithTheToolsThatAreLeftAndAnAbandonedOneIsUnmountedAndGoes)
{
    struct Case {
        const char* during;
        bool isAbandoned;
        Lines steps; // of the disk-image tool
    };
    const Lines all{"create", "mount", "unmount", "convert"};
    const Case cases[] = {{"create", false, all}, {"mount", false, all}, {"convert", false, all},
        {"create", true, {"create"}}, {"mount", true, {"create", "mount", "unmount"}},
        {"convert", true, all}};
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::Message() << each.during << each.isAbandoned);
        for (const char* name : {"record", "out/Demo.dmg"})
            fs::remove(folder / name);
        told.clear();
        writeFile(folder / "stay in", each.during + std::string("\n"));
        archiver = Archiver::initWithWorkingDirectory(folder / "scratch");
        archiver->setDelegate(noting());
        EXPECT_EQ(archiveDuring(request("Demo"),
                      [&] {
                          each.isAbandoned ? archiver->abandon() : archiver->cancel();
                          return each.isAbandoned;
                      }),
            folder / "out/Demo.dmg");
        Lines steps;
        for (const std::string& line : linesIn("record"))
            if (line.starts_with("hdiutil|"))
                steps.push_back(line.substr(14, line.find('|', 14) - 14));
        EXPECT_EQ(steps, each.steps);
        EXPECT_EQ(std::ranges::count(told, "task 130"), 1);
        EXPECT_EQ(told.back(), "completed 0");
        EXPECT_EQ(namesIn(folder / "out"), each.isAbandoned ? Lines{} : Lines{"Demo.dmg"});
    }
}
