// A disk image, with stand-ins for the tools that play a whole session.

#include "platform/base/bundle/PropertyList.h"
#include "tests/engine/EngineTest.h"

using PropertyList::Array;
using PropertyList::Dictionary;

class DiskImage : public EngineTest
{
protected:
    DiskImage()
    {
        writeFile(folder / "in/one", randomBytes(4'000'000, 1));
        writeFile(folder / "in/two", "two");
        request.files = {folder / "in/one", folder / "in/two"};
        plan(R"sh(for last; do :; done
            case "$1" in
            create) : >"$last.sparseimage" ;;
            mount) cat "$TMPDIR/listing" ;;
            unmount) sleep 0.2 ;;
            convert) printf made >>"$last.dmg" ;;
            esac
            [ ! -e "$TMPDIR/stay in $1" ] || { : >"$TMPDIR/started"; exec sleep 30; }
            exit 1)sh");
    }
    Archiver::ArchiveFiles request = job(ArchiveTypeDiskImage);
};

TEST_F(DiskImage, runsEachToolWithItsArgumentsInItsFolder)
{
    const int size = std::stoi(run({"/usr/bin/du", "-Ls", folder / "in"}).out);
    const std::string tool = "hdiutil|@/out|";
    const std::string copy = "ditto|" + fs::current_path().native() + "|-rsrcFork|@/in/";
    request.name = "Demo.x";
    for (const bool hasDelegate : {false, true}) { // with one, the tools' output is not at hand
        const char* const hint = hasDelegate ? "Apple_partition_scheme" : "GUID_partition_scheme";
        const Array listed{Dictionary{{"content-hint", "Apple_HFS"}, {"dev-entry", "/dev/part"}},
            Dictionary{{"content-hint", hint}, {"dev-entry", "/dev/whole"}}};
        const char* const listing = hasDelegate ? "out/mount.plist" : "listing"; // a stale one
        ASSERT_TRUE(PropertyList::writeToFile({{"system-entities", listed}}, folder / listing));
        writeFile(folder / "out/Demo.dmg", "older");
        renew();
        if (!hasDelegate)
            archiver->setDelegate(std::nullopt);
        request.withPassword = hasDelegate ? std::nullopt : std::optional("pass word");
        EXPECT_EQ(archiver->archiveFiles(request), folder / "out/Demo.dmg");
        Lines runs = linesIn("record");
        ASSERT_EQ(runs.size(), 6U);
        std::sort(runs.begin() + 2, runs.begin() + 4); // the order is the file system's
        EXPECT_EQ(runs,
            (Lines{tool + "create|-sectors|" + std::to_string(hasDelegate ? 10240 : 3 * size)
                    + "|-fs|HFS+|-type|SPARSE|-volname|Demo|Demo",
                tool + "mount|Demo.sparseimage|-plist", copy + "one|/Volumes/Demo/one",
                copy + "two|/Volumes/Demo/two", tool + "detach|/dev/whole",
                tool + "convert|Demo.sparseimage|-format|UDZO|"
                    + (hasDelegate ? "-o|Demo" : "-encryption|-passphrase|pass word|-o|Demo")}));
        EXPECT_EQ(readFile(folder / "out/Demo.dmg"), "made");
        EXPECT_EQ(namesIn(folder / "out"), Lines{"Demo.dmg"});
    }
    EXPECT_EQ(told, // of du as well
        (Lines{"files 3", "task 0", "task 1", "task 1", "task 1", "task 1", "task 1", "task 1",
            "completed 0"}));
}

TEST_F(DiskImage, cancelGoesOnWithTheToolsThatAreLeftAndAnAbandonedOneIsUnmountedAndGoes)
{
    // Where it ends, whether it is abandoned, and what the disk-image tool did.
    const std::tuple<std::string, bool, std::string> cases[]
        = {{"mount", false, "create mount unmount convert "}, {"create", true, "create "},
            {"mount", true, "create mount unmount "},
            {"convert", true, "create mount unmount convert "}};
    for (const auto& [during, isAbandoned, expected] : cases) {
        SCOPED_TRACE(testing::Message() << during << isAbandoned);
        renew();
        writeFile(folder / ("stay in " + during), "");
        EXPECT_EQ(archiveAndEnd(request, isAbandoned), folder / "out/Demo.dmg");
        std::string steps;
        for (const std::string& line : linesIn("record"))
            if (line.starts_with("hdiutil|"))
                steps += line.substr(14, line.find('|', 14) - 14) + " ";
        EXPECT_EQ(steps, expected);
        EXPECT_EQ(std::ranges::count(told, "task 130"), 1);
        EXPECT_EQ(told.back(), "completed 0");
        EXPECT_EQ(fs::remove(folder / "out/Demo.dmg"), !isAbandoned);
        EXPECT_TRUE(fs::is_empty(folder / "out"));
        fs::remove(folder / ("stay in " + during));
    }
}
