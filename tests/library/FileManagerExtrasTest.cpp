#include "shared/Library/Extras/FileManagerExtras.h"

#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <cstdlib>

#include <gtest/gtest.h>
#include <sys/xattr.h>

namespace fs = std::filesystem;
using namespace FileManagerExtras;
using SearchPaths::Directory;
using SearchPaths::DomainMask;
using support::TestFolder;
using support::writeFile;

namespace
{

// Environment variables of the running test.
class FileManagerExtrasTest : public testing::Test
{
protected:
    ~FileManagerExtrasTest() override
    {
        for (const auto& [name, value] : _former)
            value.empty() ? ::unsetenv(name) : ::setenv(name, value.c_str(), 1);
    }

    void set(const char* name, const fs::path& value)
    {
        const char* former = std::getenv(name);
        _former.emplace_back(name, former ? former : "");
        ::setenv(name, value.c_str(), 1);
    }

    TestFolder folder;

private:
    std::vector<std::pair<const char*, std::string>> _former;
};

} // namespace

TEST_F(FileManagerExtrasTest, findsOrMakesAFolder)
{
    set("HOME", folder.path());
    set("XDG_DATA_HOME", folder / "data");
    const auto find = [](const std::optional<std::string>& component, std::error_code* error) {
        return findOrCreateDirectory(
            Directory::applicationSupport, DomainMask::user, component, error);
    };
    std::error_code error = std::make_error_code(std::errc::io_error);
    const fs::path made = folder / "data" / "a.b";
    EXPECT_EQ(find("a.b", &error), made);
    EXPECT_TRUE(fs::is_directory(made));
    EXPECT_FALSE(error);
    writeFile(made / "kept", "");
    EXPECT_EQ(find("a.b", nullptr), made);
    EXPECT_TRUE(fs::exists(made / "kept"));
    EXPECT_EQ(find(std::nullopt, nullptr), folder / "data");

    writeFile(folder / "data" / "file", "in the way");
    EXPECT_EQ(find("file", &error), folder / "data" / "file");
    EXPECT_TRUE(fs::is_directory(folder / "data" / "file"));

    fs::create_symlink("nowhere", folder / "data" / "dangling");
    EXPECT_EQ(find("dangling", &error), std::nullopt);
    EXPECT_TRUE(error);
    writeFile(folder / "data" / "above", "");
    EXPECT_EQ(find("above/below", &error), std::nullopt);
    EXPECT_TRUE(error);
    EXPECT_EQ(find("above/below", nullptr), std::nullopt);

    EXPECT_EQ(findOrCreateDirectory(Directory(999), DomainMask::user, {}, &error), std::nullopt);
    EXPECT_FALSE(error);
    EXPECT_EQ(findOrCreateDirectory(Directory::desktop, DomainMask::system, {}), std::nullopt);
}

TEST_F(FileManagerExtrasTest, asksTheDesktopForItsFolders)
{
    set("HOME", folder.path());
    set("XDG_CONFIG_HOME", folder / "config");
    set("XDG_DATA_HOME", "relative/does/not/count");
    struct Case {
        std::string userDirs;
        fs::path desktop;
    };
    const Case cases[] = {
        {"", folder / "Desktop"},
        {"# XDG_DESKTOP_DIR=\"/no\"\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n",
            folder / "Schreibtisch"},
        {" XDG_DESKTOP_DIR=\"/a b/\\\"c\\\"/\xff\"", "/a b/\"c\"/\xff"},
        {"XDG_DESKTOP_DIR=\"/a\"\nXDG_DESKTOP_DIR=\"/b\"\nXDG_DESKTOP_DIRX=\"/c\"", "/b"},
        {"XDG_DESKTOP_DIR=\"not/absolute\"", folder / "Desktop"},
        {"XDG_DESKTOP_DIR=\"$HOME", folder.path()},
    };
    for (const Case& each : cases) {
        writeFile(folder / "config" / "user-dirs.dirs", each.userDirs);
        const auto found = SearchPaths::directories(Directory::desktop, DomainMask::user);
        EXPECT_EQ(found, std::vector{each.desktop}) << each.userDirs;
    }
    writeFile(folder / "config" / "user-dirs.dirs", "XDG_DESKTOP_DIR=\"/a b/\xff%\"");
    EXPECT_EQ(desktopDirectoryURL()->toEncoded(), "file:///a%20b/%FF%25");
    EXPECT_EQ(applicationSupportDirectoryURL()->toLocalFile().toStdString(),
        (folder / ".local/share").native());
}

TEST_F(FileManagerExtrasTest, followsLinksByTheFolderOfTheFirst)
{
    fs::create_directory(folder / "sub");
    writeFile(folder / "sub" / "file", "");
    fs::create_symlink(folder / "sub" / "second", folder / "first");
    fs::create_symlink("file", folder / "sub" / "second");
    fs::create_symlink(folder / "loop b", folder / "loop a");
    fs::create_symlink(folder / "loop a", folder / "loop b");
    fs::create_symlink("sub/", folder / "to folder");

    // Not sub/file, where the second link stands.
    EXPECT_EQ(resolveSymbolicLinkAtPath(folder / "first"), folder / "file");
    EXPECT_EQ(resolveSymbolicLinkAtPath(folder / "sub" / "second"), folder / "sub" / "file");
    EXPECT_EQ(resolveSymbolicLinkAtPath(folder / "to folder"), folder / "sub");
    EXPECT_EQ(resolveSymbolicLinkAtPath(folder / "sub"), folder / "sub");
    EXPECT_EQ(resolveSymbolicLinkAtPath("a/b"), "a/a/b");
    EXPECT_EQ(resolveSymbolicLinkAtPath("b"), "b");
    EXPECT_EQ(resolveSymbolicLinkAtPath(folder / "loop a"), folder / "loop a");
}

TEST_F(FileManagerExtrasTest, numbersAPathUntilItIsFree)
{
    set("HOME", folder.path());
    for (const char* name : {"a.txt", "a 2.txt", "b", "c.tar.gz", ".d", "\xff.e"})
        writeFile(folder / name, "");
    fs::create_symlink("nowhere", folder / "b 2"); // is nothing
    struct Case {
        fs::path path;
        fs::path free;
    };
    const Case cases[] = {
        {folder / "new.txt", folder / "new.txt"},
        {"~/new", folder / "new"},
        {"~/a.txt", folder / "a 3.txt"},
        {folder / "b", folder / "b 2"},
        {folder / "c.tar.gz", folder / "c.tar 2.gz"},
        {folder / ".d", folder / ".d 2"},
        {folder / "\xff.e", folder / "\xff 2.e"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(firstNonExistPathForPath(each.path), each.free);

    EXPECT_EQ(firstExistDirectoryForPath(folder / "x" / "y"), folder.path());
    EXPECT_EQ(firstExistDirectoryForPath(folder / "b"), folder.path());
    EXPECT_EQ(firstExistDirectoryForPath(folder.path()), folder.path());
    EXPECT_EQ(firstExistDirectoryForPath(""), std::nullopt);
    EXPECT_EQ(firstExistDirectoryForPath("no/such"), std::nullopt);
}

TEST_F(FileManagerExtrasTest, copiesToAFreePathOnly)
{
    writeFile(folder / "a", "new");
    writeFile(folder / "b.zip", "old");
    writeFile(folder / "b.zip 2", "old");
    fs::path final;
    EXPECT_FALSE(copyPath(folder / "a", folder / "b.zip", false, &final));
    EXPECT_EQ(final, folder / "b.zip");
    EXPECT_EQ(support::readFile(folder / "b.zip"), "old");
    EXPECT_TRUE(copyPath(folder / "a", folder / "b.zip", true, &final));
    EXPECT_EQ(final, folder / "b.zip 3");
    EXPECT_EQ(support::readFile(final), "new");
    EXPECT_TRUE(copyPath(folder / "a", folder / "c", true));
    EXPECT_FALSE(copyPath(folder / "missing", folder / "d", true, &final));
    fs::create_directories(folder / "odd/sub");
    writeFile(folder / "odd/sub/a", "a");
    ::mkfifo((folder / "odd/pipe").c_str(), 0600); // cannot be copied
    EXPECT_FALSE(copyPath(folder / "odd", folder / "half", false));
    EXPECT_FALSE(fs::exists(folder / "half"));
    EXPECT_EQ(final, folder / "d");

    fs::create_directories(folder / "tree" / "below");
    EXPECT_FALSE(copyPath(folder / "tree", folder / "tree" / "below" / "copy", false));
    EXPECT_FALSE(copyPath(folder / "tree", folder / "b.zip", false));
    EXPECT_TRUE(copyPath(folder / "tree", folder / "tree2", false));
    EXPECT_TRUE(fs::is_directory(folder / "tree2" / "below"));
}

TEST_F(FileManagerExtrasTest, removesOnlyWhatItsRulesAllow)
{
    writeFile(folder / "full" / ".DS_Store", "");
    fs::create_directory(folder / "empty");
    fs::create_directory_symlink("target", folder / "link");
    fs::create_directory(folder / "target");
    writeFile(folder / "file", "");
    fs::create_symlink("nowhere", folder / "dangling");

    EXPECT_FALSE(removeEmptyFolderAtPath(folder / "full"));
    EXPECT_FALSE(removeEmptyFolderAtPath(folder / "file"));
    EXPECT_FALSE(removeEmptyFolderAtPath(folder / "missing"));
    EXPECT_TRUE(removeEmptyFolderAtPath(folder / "empty"));
    EXPECT_TRUE(removeEmptyFolderAtPath(folder / "link"));

    std::error_code error;
    EXPECT_FALSE(removeItemIfExistsAtPath(folder / "target", &error));
    EXPECT_TRUE(removeItemIfExistsAtPath(folder / "missing", &error));
    EXPECT_TRUE(removeItemIfExistsAtPath(folder / "dangling", &error));
    EXPECT_TRUE(removeItemIfExistsAtPath(folder / "file"));
    EXPECT_FALSE(error);
    EXPECT_FALSE(removeItemIfExistsAtPath("/proc/self/stat", &error));
    EXPECT_TRUE(error);
    EXPECT_EQ(
        support::namesIn(folder.path()), (std::vector<std::string>{"dangling", "full", "target"}));
}

TEST_F(FileManagerExtrasTest, keepsTheWishToHideAnExtension)
{
    const fs::path file = folder / "a.txt";
    writeFile(file, "");
    if (::setxattr(file.c_str(), "user.org.parcelo.test", "", 0, 0) != 0)
        GTEST_SKIP() << "no extended attributes here";
    const auto stored = [&] {
        char value = 0;
        ::getxattr(file.c_str(), "user.org.parcelo.extension-hidden", &value, 1);
        return value;
    };
    EXPECT_TRUE(hideFileExtensionAtPath(file));
    EXPECT_EQ(stored(), '1');
    EXPECT_TRUE(unhideFileExtensionAtPath(file));
    EXPECT_EQ(stored(), '0');
    EXPECT_FALSE(hideFileExtensionAtPath(folder / "missing"));
}

TEST_F(FileManagerExtrasTest, tellsDates)
{
    const QDateTime before = QDateTime::currentDateTime();
    writeFile(folder / "old", "");
    support::setTime(folder / "old", -86400, 999000000); // before 1970
    EXPECT_EQ(modificationDateOfItemAtPath(folder / "old")->toMSecsSinceEpoch(), -86399001);
    const auto created = creationDateOfItemAtPath(folder / "old");
    const bool isRecorded = created->addSecs(2) >= before; // or the modification date stands for it
    EXPECT_TRUE(isRecorded || created == modificationDateOfItemAtPath(folder / "old"));

    fs::create_symlink("old", folder / "link");
    support::setTime(folder / "link", 1000);
    EXPECT_EQ(modificationDateOfItemAtPath(folder / "link")->toSecsSinceEpoch(), 1000);
    fs::create_symlink("nowhere", folder / "dangling");
    for (const char* name : {"missing", "dangling"}) {
        EXPECT_EQ(modificationDateOfItemAtPath(folder / name), std::nullopt);
        EXPECT_EQ(creationDateOfItemAtPath(folder / name), std::nullopt);
    }
}

TEST_F(FileManagerExtrasTest, sumsSizesOnceRoundACycle)
{
    writeFile(folder / "tree" / "ten", "0123456789");
    fs::create_directory(folder / "tree" / "empty");
    EXPECT_EQ(fileSizeAtPath(folder / "tree"), 10);
    EXPECT_EQ(fileSizeAtPath(folder / "tree" / "empty"), 0);
    EXPECT_EQ(fileSizeAtPath(folder / "missing"), 0);

    fs::create_symlink("ten", folder / "tree" / "link"); // 3, the length of its text
    fs::create_directory_symlink("tree", folder / "to tree"); // counts as a folder
    EXPECT_EQ(fileSizeAtPath(folder / "tree"), 13);
    EXPECT_EQ(fileSizeAtPath(folder / "to tree"), 13);

    fs::create_directory_symlink("..", folder / "tree" / "empty" / "up");
    EXPECT_EQ(fileSizeAtPath(folder / "tree"), 13);
    fs::create_directory_symlink(
        "tree", folder / "again"); // no cycle: counts as often as it is met
    EXPECT_EQ(fileSizeAtPath(folder.path()), 3 * 13);

    fs::resize_file(folder / "tree" / "ten", 5'000'000'000);
    EXPECT_EQ(fileSizeAtPaths({folder / "tree", folder / "tree" / "ten"}), 10'000'000'003);
    EXPECT_EQ(fileSizeAtPaths({}), 0);
}
