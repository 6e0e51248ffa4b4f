#include "shared/Library/Extras/FileManagerExtras.h"

#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace fs = std::filesystem;
using namespace FileManagerExtras;
using support::writeFile;

namespace
{

struct FileManagerExtrasTest : testing::Test {
    const support::TestFolder folder;
    const fs::path home = std::getenv("HOME"); // the test run's own: all the user's folders
    std::error_code error;
};

} // namespace

TEST_F(FileManagerExtrasTest, findsOrMakesAFolder)
{
    writeFile(home / "file", "");
    const std::pair<const char*, bool> cases[]
        = {{"file/below", false}, {"new/below", true}, {"new", true}, {"file", true}};
    for (const auto& [name, isFound] : cases) {
        const auto found = findOrCreateDirectory(SearchPaths::Directory::applicationSupport,
            SearchPaths::DomainMask::user, name, &error);
        EXPECT_EQ(found, isFound ? std::optional(home / name) : std::nullopt) << name;
        EXPECT_EQ(fs::is_directory(home / name), isFound) << name;
        EXPECT_EQ(!error, isFound) << name;
    }
    EXPECT_TRUE(fs::exists(home / "new/below")) << "a folder that was there is emptied";
}

TEST_F(FileManagerExtrasTest, asksTheDesktopForItsFolders)
{
    const std::pair<const char*, QByteArray> cases[] = {{"not/absolute\"", "/Desktop"},
        {"$HOME/Tisch\"\nXDG_DESKTOP_DIRX=\"/c\"\n# XDG_DESKTOP_DIR=\"/no\"", "/Tisch"},
        {"$HOME/a b/\\\"c\\\"/\xff%\"", "/a%20b/%22c%22/%FF%25"}};
    for (const auto& [text, desktop] : cases) {
        writeFile(home / "user-dirs.dirs", " XDG_DESKTOP_DIR=\"" + std::string(text));
        EXPECT_EQ(
            desktopDirectoryURL()->toEncoded(), ("file://" + home.native()).c_str() + desktop);
    }
    EXPECT_EQ(applicationSupportDirectoryURL()->toLocalFile().toStdString(), home);
}

TEST_F(FileManagerExtrasTest, findsPathsThatAreFreeOrThere)
{
    for (const char* name : {"a.tar.gz", "a.tar 2.gz", ".d", "sub/file"})
        writeFile(folder / name, "");
    writeFile(home / "a.txt", "");
    EXPECT_EQ(firstNonExistPathForPath("~/a.txt"), home / "a 2.txt");
    EXPECT_EQ(firstNonExistPathForPath("~/free"), home / "free");
    EXPECT_EQ(firstNonExistPathForPath(folder / "a.tar.gz"), folder / "a.tar 3.gz");
    EXPECT_EQ(firstNonExistPathForPath(folder / ".d"), folder / ".d 2");
    EXPECT_EQ(firstExistDirectoryForPath(folder / "sub/file/x"), folder / "sub");
    EXPECT_EQ(firstExistDirectoryForPath("no/such"), std::nullopt);

    fs::create_symlink(folder / "sub/second", folder / "first");
    fs::create_symlink("file", folder / "sub/second");
    fs::create_symlink("loop", folder / "loop");
    EXPECT_EQ(resolveSymbolicLinkAtPath(folder / "first"), folder / "file"); // not sub/file
    EXPECT_EQ(resolveSymbolicLinkAtPath(folder / "loop"), folder / "loop");
    EXPECT_EQ(resolveSymbolicLinkAtPath("a/b"), "a/a/b");
}

TEST_F(FileManagerExtrasTest, copiesToAFreePathAndRemovesLittle)
{
    for (const char* name : {"a/below/.x", "b.zip", "b.zip 2", "odd/file"})
        writeFile(folder / name, name);
    support::makeFifo(folder / "odd/pipe"); // cannot be copied
    fs::path final;
    EXPECT_FALSE(copyPath(folder / "a/below/.x", folder / "b.zip", false, &final));
    EXPECT_EQ(final, folder / "b.zip");
    EXPECT_TRUE(copyPath(folder / "a", folder / "b.zip", true, &final));
    EXPECT_EQ(final, folder / "b.zip 3");
    EXPECT_FALSE(copyPath(folder / "a", folder / "a/below/copy", false));
    EXPECT_FALSE(copyPath(folder / "odd", folder / "half", true));
    EXPECT_EQ(support::readFile(folder / "b.zip"), "b.zip");
    EXPECT_EQ(support::namesIn(folder / "b.zip 3/below"), std::vector<std::string>{".x"});

    fs::create_directory(folder / "empty");
    EXPECT_FALSE(removeEmptyFolderAtPath(folder / "a/below"));
    EXPECT_FALSE(removeItemIfExistsAtPath(folder / "empty", &error));
    EXPECT_TRUE(removeEmptyFolderAtPath(folder / "empty"));
    for (const char* name : {"missing", "b.zip 2"})
        EXPECT_TRUE(removeItemIfExistsAtPath(folder / name, &error)) << name;
    EXPECT_FALSE(error);
    EXPECT_FALSE(removeItemIfExistsAtPath("/proc/self/stat", &error));
    EXPECT_TRUE(error);
    EXPECT_EQ(support::namesIn(folder.path()),
        (std::vector<std::string>{"a", "b.zip", "b.zip 3", "odd"}));
}

TEST_F(FileManagerExtrasTest, tellsSizesDatesAndWishes)
{
    const fs::path file = folder / "tree/ten";
    writeFile(file, "0123456789");
    fs::create_symlink("ten", folder / "tree/link"); // 3, the length of its text
    fs::create_directory_symlink("..", folder / "tree/up"); // a cycle
    fs::create_directory_symlink("tree", folder / "again"); // counts as often as it is met
    EXPECT_EQ(fileSizeAtPaths({folder.path(), folder / "missing"}), 2 * 13);

    support::setTime(file, -86400, 999000000); // before 1970
    EXPECT_EQ(modificationDateOfItemAtPath(file)->toMSecsSinceEpoch(), -86399001);
    struct statx status = {};
    ASSERT_EQ(::statx(AT_FDCWD, file.c_str(), 0, STATX_BTIME, &status), 0);
    const bool isRecorded = (status.stx_mask & STATX_BTIME) != 0;
    EXPECT_EQ(creationDateOfItemAtPath(file)->toMSecsSinceEpoch() / 1000,
        isRecorded ? status.stx_btime.tv_sec : -86399);
    EXPECT_EQ(creationDateOfItemAtPath(folder / "missing"), std::nullopt);

    const bool takesWishes = ::setxattr(file.c_str(), "user.k", "v", 1, 0) == 0; // file systems
    EXPECT_EQ(hideFileExtensionAtPath(file) && unhideFileExtensionAtPath(file), takesWishes);
    char wish = takesWishes ? '?' : '0';
    (void)::getxattr(file.c_str(), "user.org.parcelo.extension-hidden", &wish, 1);
    EXPECT_EQ(wish, '0');
    EXPECT_FALSE(hideFileExtensionAtPath(folder / "missing"));
}
