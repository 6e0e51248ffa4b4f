#include "shared/Library/Extras/FileManagerExtras.h"

#include "tests/support/qt/QtTest.h"

using namespace FileManagerExtras;

struct FileManagerExtrasTest : testing::Test {
    const TestFolder folder;
    const fs::path home = std::getenv("HOME"); // the test run's own: all the user's folders
    std::error_code error;
};

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
    writeFile(home / "user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/a b/\xff%\"");
    EXPECT_TRUE(desktopDirectoryURL()->toEncoded().endsWith("/a%20b/%FF%25"));
}

TEST_F(FileManagerExtrasTest, findsPathsThatAreFreeOrThere)
{
    for (const auto& file : {home / "a.tar.gz", home / "a.tar 2.gz", folder / "sub/file"})
        writeFile(file, "");
    EXPECT_EQ(firstNonExistPathForPath("~/a.tar.gz"), home / "a.tar 3.gz");
    EXPECT_EQ(firstExistDirectoryForPath(folder / "sub/file/x"), folder / "sub");

    fs::create_symlink(folder / "sub/second", folder / "first");
    fs::create_symlink("file", folder / "sub/second");
    EXPECT_EQ(resolveSymbolicLinkAtPath(folder / "first"), folder / "file"); // not sub/file
}

TEST_F(FileManagerExtrasTest, copiesToAFreePathAndRemovesLittle)
{
    for (const char* name : {"a/below/.x", "b.zip", "b.zip 2"})
        writeFile(folder / name, name);
    fs::create_symlink("nowhere", folder / "link"); // where nothing exists, and yet somebody's
    EXPECT_FALSE(copyPath(folder / "a/below/.x", folder / "b.zip", false));
    EXPECT_FALSE(copyPath(folder / "none", folder / "link", false));
    EXPECT_TRUE(copyPath(folder / "a", folder / "b.zip", true));
    EXPECT_EQ(readFile(folder / "b.zip 3/below/.x"), "a/below/.x");
    EXPECT_EQ(readFile(folder / "b.zip"), "b.zip");

    fs::create_directory(folder / "empty");
    EXPECT_FALSE(removeEmptyFolderAtPath(folder / "a/below"));
    EXPECT_FALSE(removeItemIfExistsAtPath(folder / "empty"));
    EXPECT_TRUE(removeEmptyFolderAtPath(folder / "empty"));
    EXPECT_TRUE(removeItemIfExistsAtPath(folder / "b.zip 2"));
    EXPECT_FALSE(removeItemIfExistsAtPath("/proc/self/stat", &error) || !error);
    EXPECT_EQ(namesIn(folder.path()), (Names{"a", "b.zip", "b.zip 3", "link"}));
}

TEST_F(FileManagerExtrasTest, tellsSizesDatesAndWishes)
{
    const fs::path file = folder / "tree/ten";
    writeFile(file, "0123456789");
    fs::create_symlink("ten", folder / "tree/link"); // 3, the length of its text
    fs::create_directory_symlink("..", folder / "tree/up"); // a cycle
    EXPECT_EQ(fileSizeAtPaths({folder.path(), file}), 13 + 10);

    EXPECT_LT(creationDateOfItemAtPath(file)->secsTo(QDateTime::currentDateTime()), 60);
    setTime(file, -86400, 999000000); // before 1970
    EXPECT_EQ(modificationDateOfItemAtPath(file)->toMSecsSinceEpoch(), -86399001);

    const bool takesWishes = ::setxattr(file.c_str(), "user.k", "v", 1, 0) == 0; // file systems
    EXPECT_EQ(hideFileExtensionAtPath(file) && unhideFileExtensionAtPath(file), takesWishes);

    for (int level = 0; level < 700; ++level) { // deeper than a path is long
        fs::rename(folder / "tree", folder / "inner");
        fs::create_directory(folder / "tree");
        fs::rename(folder / "inner", folder / "tree/inner");
    }
    fs::create_directory_symlink("tree", folder / "again"); // counts as a folder
    EXPECT_EQ(fileSizeAtPath(folder.path()), 13 * 2);
}
