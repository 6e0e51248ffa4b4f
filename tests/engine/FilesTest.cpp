// Moving, copying, removing and counting files, and the scratch folder.

#include "tests/support/Files.h"

#include "platform/base/bundle/PropertyList.h"
#include "platform/base/files/FileCopy.h"
#include "platform/base/files/FileMove.h"
#include "platform/base/files/FileTree.h"
#include "platform/base/files/ScratchFolder.h"
#include "system/PathString.h"
#include "tests/engine/FailingCalls.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TreeSnapshot.h"

#include <csignal>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>

using namespace support;
namespace fs = std::filesystem;
using Names = std::vector<std::string>;

namespace
{

dev_t deviceOf(const fs::path& path)
{
    struct statx status = {};
    statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS, &status);
    return makedev(status.stx_dev_major, status.stx_dev_minor);
}

} // namespace

TEST(FileMove, neverOverwritesWhateverTheFileSystemCan)
{
    struct Case {
        const char* name;
        unsigned renameFailure;
        unsigned linkFailure;
    };
    const Case cases[] = {{"flag known", 0, 0}, {"flag unknown", EINVAL, 0},
        {"old kernel", ENOSYS, 0}, {"no hard links", EINVAL, EPERM}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        inThread([&] {
            const TestFolder folder;
            writeFile(folder / "new", "new");
            writeFile(folder / "taken", "taken");
            if (each.renameFailure != 0)
                letFail(SYS_renameat2, each.renameFailure);
            if (each.linkFailure != 0)
                letFail(SYS_linkat, each.linkFailure);
            EXPECT_EQ(FileMove::moveItem(folder / "new", folder / "taken"), std::errc::file_exists);
            EXPECT_EQ(FileMove::moveItem(folder / "none", folder / "free"),
                std::errc::no_such_file_or_directory);
            EXPECT_FALSE(FileMove::moveItem(folder / "new", folder / "moved"));
            EXPECT_EQ(readFile(folder / "taken"), "taken");
            EXPECT_EQ(readFile(folder / "moved"), "new");
            EXPECT_EQ(namesIn(folder.path()), (Names{"moved", "taken"}));
        });
    }
}

TEST(FileMove, namesNothingThatIsNotOnTheDisk)
{
    const TestFolder folder;
    writeFile(folder / "from", "new");
    writeFile(folder / "list", "old");
    inThread([&] {
        letFail(SYS_fsync, EIO);
        EXPECT_EQ(FileMove::moveItem(folder / "from", folder / "to"), std::errc::io_error);
        EXPECT_FALSE(PropertyList::writeToFile({}, folder / "list"));
    });
    EXPECT_EQ(namesIn(folder.path()), (Names{"from", "list"}));
    EXPECT_EQ(readFile(folder / "list"), "old");
}

TEST(FileMove, toAnotherFileSystemIsWholeOrNothing)
{
    const TestFolder folder;
    setenv("TMPDIR", "/dev/shm", 1);
    const TestFolder other;
    unsetenv("TMPDIR");
    if (deviceOf(folder.path()) == deviceOf(other.path()))
        GTEST_SKIP() << "no second file system";
    const std::string content = randomBytes(3'000'000, 1);
    const std::string longName(255, 'n');
    const fs::path to = other / "to" / longName;
    writeFile(folder / "from", content);
    chmod((folder / "from").c_str(), 0640);
    setTime(folder / "from", 1'000'000'000, 5);
    const auto before = snapshot(folder.path()).at("from");
    writeFile(other / "to/taken", "taken");

    EXPECT_EQ(FileMove::moveItem(folder / "from", other / "to/taken"), std::errc::file_exists);
    std::stop_source ending;
    ending.request_stop();
    EXPECT_EQ(
        FileMove::moveItem(folder / "from", to, ending.get_token()), std::errc::operation_canceled);
    inThread([&] { // not even room for half of it
        const rlimit limit{.rlim_cur = 1'000'000, .rlim_max = RLIM_INFINITY};
        rlimit former{};
        getrlimit(RLIMIT_FSIZE, &former);
        const auto handler = signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_EQ(FileMove::moveItem(folder / "from", to), std::errc::file_too_large);
        setrlimit(RLIMIT_FSIZE, &former);
        signal(SIGXFSZ, handler);
    });
    inThread([&] { // the source, which is opened before the copy, can be flushed
        const int first = FileDescriptor(dup(STDERR_FILENO)).number();
        letFail(SYS_fsync, EIO, static_cast<unsigned>(first) + 1);
        EXPECT_EQ(FileMove::moveItem(folder / "from", to), std::errc::io_error);
    });
    EXPECT_EQ(namesIn(other / "to"), Names{"taken"});
    EXPECT_EQ(readFile(folder / "from"), content);

    const std::string hidden = "to/." + longName.substr(0, 242) + ".part-";
    writeFile(other / (hidden + "abcdef"), "of a process that was killed");
    writeFile(other / (hidden + "five5"), "of somebody else");
    inThread([&] {
        letFail(SYS_copy_file_range, EXDEV); // an older kernel
        EXPECT_FALSE(FileMove::moveItem(folder / "from", to));
    });
    EXPECT_EQ(namesIn(other / "to"),
        (Names{fs::path(hidden).filename().native() + "five5", longName, "taken"}));
    EXPECT_EQ(readFile(to), content);
    const auto after = snapshot(other / "to").at(longName);
    EXPECT_EQ(after.mode, before.mode);
    EXPECT_EQ(after.time, before.time);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(FileCopy, keepsAllOfATreeAndTellsWhatItCannot)
{
    const TestFolder folder;
    writeFile(folder / "from/sub/\xff", someText(700'000));
    writeFile(folder / "from/empty", "");
    fs::create_symlink("/no/where", folder / "from/link");
    fs::create_directory_symlink("..", folder / "from/sub/loop");
    chmod((folder / "from/empty").c_str(), 0400);
    for (const char* path : {"from/sub/\xff", "from/link", "from/sub", "from"})
        setTime(folder / path, 1'000'000'000);
    chmod((folder / "from/sub").c_str(), 0510);
    makeFifo(folder / "from/pipe"); // must not hold up the rest
    std::vector<fs::path> failed;
    const auto note = [&](const fs::path& item, std::error_code) { failed.push_back(item); };

    EXPECT_EQ(FileCopy::copyItem(folder / "from", folder / "to", {.onFailure = note}),
        std::errc::operation_not_supported);
    EXPECT_EQ(failed, std::vector{folder / "from/pipe"});
    fs::remove(folder / "from/pipe");
    EXPECT_EQ(differences(snapshot(folder / "from"), snapshot(folder / "to")), Names{});
    EXPECT_EQ(
        FileCopy::copyItem(folder / "from/empty", folder / "to/link"), std::errc::file_exists);
    EXPECT_EQ(FileCopy::copyItem(folder / "from", folder / "to"), std::errc::file_exists);
    EXPECT_EQ(
        FileCopy::copyItem(folder / "none", folder / "no"), std::errc::no_such_file_or_directory);

    std::stop_source ending;
    ending.request_stop();
    const FileCopy::Options stopped{.stop = ending.get_token()};
    EXPECT_EQ(FileCopy::copyItem(folder / "from/sub/\xff", folder / "file", stopped),
        std::errc::operation_canceled);
    EXPECT_EQ(FileCopy::copyItem(folder / "from", folder / "none", stopped),
        std::errc::operation_canceled);
    EXPECT_TRUE(fs::is_empty(folder / "none"));
    EXPECT_EQ(FileTree::countEntries(folder / "from"), 5U);
    EXPECT_EQ(FileTree::countEntries(folder / "from", ending.get_token()), 3U);
}

TEST(FileCopy, copiesNeitherTheCopyNorWhatIsToBeLeftOut)
{
    const TestFolder folder;
    writeFile(folder / "a", "a");
    writeFile(folder / "tmp/scratch/other", "other");
    fs::create_directories(folder / "sub/in");
    const FileCopy::Options options{.leavingOut = folder / "tmp/scratch"};
    EXPECT_FALSE(FileCopy::copyItem(folder.path(), folder / "tmp/scratch/all", options));
    EXPECT_EQ(namesIn(folder / "tmp/scratch/all"), (Names{"a", "sub", "tmp"}));
    EXPECT_TRUE(fs::is_empty(folder / "tmp/scratch/all/tmp"));
    EXPECT_FALSE(FileCopy::copyItem(folder / "sub", folder / "sub/in/copy"));
    EXPECT_TRUE(fs::is_empty(folder / "sub/in/copy/in"));
}

// The pipe that is met first, in one of two folders, is the moment to take the other one away.
TEST(FileCopy, isNotLedOutsideByALinkThatTakesAFoldersPlace)
{
    for (const char* const side : {"from", "to"}) {
        const TestFolder folder;
        fs::create_directory(folder / "outside");
        for (const char* name : {"a", "b"}) {
            writeFile(folder / "from" / name / "file", name);
            makeFifo(folder / "from" / name / "pipe");
        }
        std::vector<fs::path> failed;
        fs::path other;
        const auto swap = [&](const fs::path& item, std::error_code) {
            failed.push_back(item);
            if (failed.size() > 1)
                return;
            other = item.parent_path().filename() == "a" ? "b" : "a";
            fs::rename(folder / side / other, folder / "taken");
            fs::create_directory_symlink(
                *side == 't' ? "../outside" : "../taken", folder / side / other);
        };
        EXPECT_TRUE(FileCopy::copyItem(folder / "from", folder / "to", {.onFailure = swap}));
        EXPECT_EQ(failed.size(), 2U) << side;
        EXPECT_EQ(failed.back(), folder / "from" / other);
        EXPECT_TRUE(fs::is_empty(folder / "to" / other)) << side << ": led outside";
    }
}

TEST(FileTree, countsCopiesAndRemovesAnyDepthWithoutFollowingLinks)
{
    const TestFolder folder;
    writeFile(folder / "outside/kept", "kept");
    constexpr unsigned depth = 1200; // more than descriptors, and 24 KB of path
    makeNestedFolders(folder / "tree", std::string(20, 'd'), depth);
    fs::create_directory_symlink(folder / "outside", folder / "tree/link");
    fs::create_directories(folder / "tree/side/empty");
    EXPECT_EQ(FileTree::countEntries(folder / "tree"), depth + 4);
    for (const char* name : {"tree/link", "outside/kept", "none"})
        EXPECT_EQ(FileTree::countEntries(folder / name), 0U);

    EXPECT_FALSE(FileCopy::copyItem(folder / "tree", folder / "copy"));
    EXPECT_EQ(differences(snapshot(folder / "tree"), snapshot(folder / "copy")), Names{});

    EXPECT_FALSE(FileTree::remove(folder / "tree/link"));
    EXPECT_FALSE(FileTree::remove(folder / "tree"));
    EXPECT_FALSE(FileTree::remove(folder / "copy"));
    EXPECT_EQ(FileTree::remove(folder / "tree"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(namesIn(folder.path()), Names{"outside"});
    EXPECT_EQ(readFile(folder / "outside/kept"), "kept");
}

TEST(ScratchFolder, livesAsLongAsItsObjectAndTidiesUpAfterTheKilled)
{
    const TestFolder folder;
    setenv("TMPDIR", folder.path().c_str(), 1);
    const fs::path stale = folder / "org.parcelo.Parcelo-1-staled";
    writeFile(folder / "org.parcelo.Parcelo", "another's");
    {
        const ScratchFolder first;
        const fs::path live = first.path();
        EXPECT_TRUE(live.filename().native().starts_with(
            "org.parcelo.Parcelo-" + std::to_string(getpid())));
        EXPECT_EQ(fs::status(live).permissions(), fs::perms::owner_all);
        fs::create_directory_symlink(live, folder / "org.parcelo.Parcelo-1-linked");
        for (const fs::path& parent : {live, stale}) {
            writeFile(parent / "sub/file", "");
            chmod((parent / "sub").c_str(), 0);
        }
        const ScratchFolder second;
        EXPECT_TRUE(fs::exists(live));
        EXPECT_FALSE(fs::exists(stale));
    }
    EXPECT_EQ(namesIn(folder.path()), (Names{"org.parcelo.Parcelo", "org.parcelo.Parcelo-1-linked"}));

    std::atomic<int> made = 0; // each must survive the tidying of all others
    {
        std::vector<std::jthread> makers(4);
        for (std::jthread& maker : makers)
            maker = std::jthread([&] {
                for (int round = 0; round < 250; ++round)
                    made += fs::exists(ScratchFolder().path()) ? 1 : 0;
            });
    }
    EXPECT_EQ(made, 1000);

    setenv("TMPDIR", (folder / "none").c_str(), 1);
    EXPECT_THROW(ScratchFolder(), ScratchFolderFailure);
    unsetenv("TMPDIR");
}

TEST(PathString, takesPathsApart)
{
    const struct {
        const char* path;
        const char* last;
        const char* folder;
        const char* withoutExtension;
    } cases[] = {{"/tmp/a.tar.gz", "a.tar.gz", "/tmp", "/tmp/a.tar"},
        {"/tmp/a.b//", "a.b", "/tmp", "/tmp/a"}, {"/a", "a", "/", "/a"}, {"//a", "a", "/", "//a"},
        {"///", "/", "/", "/"}, {"", "", "", ""}, {"a.txt", "a.txt", "", "a"},
        {"x.y/.bashrc", ".bashrc", "x.y", "x.y/.bashrc"}, {"x.y/z", "z", "x.y", "x.y/z"},
        {"a.", "a.", "", "a."}, {"a..b", "a..b", "", "a."}, {"\xff.\xfe", "\xff.\xfe", "", "\xff"}};
    for (const auto& [path, last, parent, withoutExtension] : cases) {
        EXPECT_EQ(PathString::lastPathComponent(path), last) << path;
        EXPECT_EQ(PathString::stringByDeletingLastPathComponent(path), parent) << path;
        EXPECT_EQ(PathString::stringByDeletingPathExtension(path), withoutExtension) << path;
    }
    setenv("HOME", "/home/me", 1);
    const std::pair<const char*, const char*> tildes[]
        = {{"~/", "/home/me"}, {"~/Desktop", "/home/me/Desktop"}, {"~root/x", "/root/x"},
            {"~no one/x", "~no one/x"}, {"/a/~", "/a/~"}};
    for (const auto& [path, expanded] : tildes)
        EXPECT_EQ(PathString::stringByExpandingTildeInPath(path), expanded) << path;
}
