// Moving, copying, removing and counting files, and the scratch folder.

#include "tests/support/Files.h"

#include "platform/base/files/FileCopy.h"
#include "platform/base/files/FileMove.h"
#include "platform/base/files/FileTree.h"
#include "platform/base/files/ScratchFolder.h"
#include "system/PathString.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TreeSnapshot.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>

using namespace support;
namespace fs = std::filesystem;

namespace
{

dev_t deviceOf(const fs::path& path)
{
    struct statx status = {};
    statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS, &status);
    return makedev(status.stx_dev_major, status.stx_dev_minor);
}

// Lets a system call fail from now on, in this thread for good.
void letFail(unsigned call, unsigned reason)
{
    std::array<sock_filter, 4> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | reason),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog filter{.len = program.size(), .filter = program.data()};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), 0);
}

// In a thread of its own, for what is not to last.
template <typename Work> void inThread(Work work)
{
    std::jthread{work}.join();
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
            EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"moved", "taken"}));
        });
    }
}

TEST(FileMove, ofTwoAtOnceToOneNameOneWins)
{
    const TestFolder folder;
    for (int round = 0; round < 100; ++round) {
        writeFile(folder / "a", "a");
        writeFile(folder / "b", "b");
        std::error_code first;
        std::jthread other([&] { first = FileMove::moveItem(folder / "a", folder / "to"); });
        const auto second = FileMove::moveItem(folder / "b", folder / "to");
        other.join();
        ASSERT_NE(!first, !second);
        ASSERT_EQ(readFile(folder / "to"), first ? "b" : "a");
        fs::remove(folder / "to");
    }
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
    writeFile(folder / "from", content);
    chmod((folder / "from").c_str(), 0640);
    setTime(folder / "from", 1'000'000'000, 5);
    const auto before = snapshot(folder.path()).at("from");
    fs::create_directory(other / "to");
    writeFile(other / "to/taken", "taken");

    EXPECT_EQ(FileMove::moveItem(folder / "from", other / "to/taken"), std::errc::file_exists);
    inThread([&] { // not even room for half of it
        const rlimit limit{.rlim_cur = 1'000'000, .rlim_max = RLIM_INFINITY};
        rlimit former{};
        getrlimit(RLIMIT_FSIZE, &former);
        const auto handler = signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_EQ(FileMove::moveItem(folder / "from", other / ("to/" + longName)),
            std::errc::file_too_large);
        setrlimit(RLIMIT_FSIZE, &former);
        signal(SIGXFSZ, handler);
    });
    EXPECT_EQ(namesIn(other / "to"), std::vector<std::string>{"taken"});
    EXPECT_EQ(readFile(folder / "from"), content);

    const std::string hidden = "to/." + longName.substr(0, 242) + ".part-";
    writeFile(other / (hidden + "abcdef"), "of a process that was killed");
    writeFile(other / (hidden + "five5"), "of somebody else");
    inThread([&] {
        letFail(SYS_copy_file_range, EXDEV); // an older kernel
        EXPECT_FALSE(FileMove::moveItem(folder / "from", other / ("to/" + longName)));
    });
    EXPECT_FALSE(fs::exists(other / (hidden + "abcdef")));
    EXPECT_TRUE(fs::remove(other / (hidden + "five5")));
    EXPECT_EQ(namesIn(other / "to"), (std::vector<std::string>{longName, "taken"}));
    EXPECT_EQ(readFile(other / ("to/" + longName)), content);
    const auto after = snapshot(other / "to").at(longName);
    EXPECT_EQ(after.mode, before.mode);
    EXPECT_EQ(after.time, before.time);
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(FileCopy, keepsContentsModesTimesAndLinks)
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
    makeFifo(folder / "from/pipe"); // cannot be copied, and must not hold up the rest

    EXPECT_EQ(
        FileCopy::copyItem(folder / "from", folder / "to"), std::errc::operation_not_supported);
    fs::remove(folder / "from/pipe");
    EXPECT_EQ(differences(snapshot(folder / "from"), snapshot(folder / "to")),
        std::vector<std::string>{});
    EXPECT_EQ(
        FileCopy::copyItem(folder / "from/empty", folder / "to/link"), std::errc::file_exists);
}

TEST(FileCopy, copiesNeitherTheCopyNorWhatIsToBeLeftOut)
{
    const TestFolder folder;
    writeFile(folder / "a", "a");
    writeFile(folder / "tmp/scratch/other", "other");
    fs::create_directories(folder / "sub/in");
    makeFifo(folder / "sub/pipe");
    std::vector<fs::path> failed;
    const auto note = [&](const fs::path& item, std::error_code) { failed.push_back(item); };
    const FileCopy::Options options{.leavingOut = folder / "tmp/scratch", .onFailure = note};
    EXPECT_EQ(FileCopy::copyItem(folder.path(), folder / "tmp/scratch/all", options),
        std::errc::operation_not_supported);
    EXPECT_EQ(failed, std::vector{folder / "sub/pipe"});
    EXPECT_EQ(namesIn(folder / "tmp/scratch/all"), (std::vector<std::string>{"a", "sub", "tmp"}));
    EXPECT_TRUE(fs::is_empty(folder / "tmp/scratch/all/tmp"));
    fs::remove(folder / "sub/pipe");
    EXPECT_FALSE(FileCopy::copyItem(folder / "sub", folder / "sub/in/copy"));
    EXPECT_TRUE(fs::is_empty(folder / "sub/in/copy/in"));
}

TEST(FileCopy, andWhatElseTakesLongStopsWhenAsked)
{
    const TestFolder folder;
    std::stop_source ending;
    fs::create_directories(folder / "from/sub");
    makeFifo(folder / "from/pipe");
    writeFile(folder / "from/sub/a", std::string(1'000'000, 'a'));
    ending.request_stop();
    const FileCopy::Options stopped{.stop = ending.get_token()};
    EXPECT_EQ(FileCopy::copyItem(folder / "from/sub/a", folder / "a", stopped),
        std::errc::operation_canceled);
    EXPECT_EQ(
        FileCopy::copyItem(folder / "from", folder / "to", stopped), std::errc::operation_canceled);
    EXPECT_TRUE(namesIn(folder / "to").empty());
    EXPECT_EQ(FileTree::countEntries(folder / "from"), 3U);
    EXPECT_EQ(FileTree::countEntries(folder / "from", ending.get_token()), 2U);

    setenv("TMPDIR", "/dev/shm", 1);
    const TestFolder other;
    unsetenv("TMPDIR");
    if (deviceOf(folder.path()) == deviceOf(other.path()))
        GTEST_SKIP() << "no second file system";
    EXPECT_EQ(FileMove::moveItem(folder / "from/sub/a", other / "a", ending.get_token()),
        std::errc::operation_canceled);
    EXPECT_TRUE(fs::exists(folder / "from/sub/a"));
    EXPECT_TRUE(namesIn(other.path()).empty());
}

TEST(FileTree, countsAndRemovesAnyDepthWithoutFollowingLinks)
{
    const TestFolder folder;
    writeFile(folder / "outside/kept", "kept");
    writeFile(folder / "tree/a", "");
    fs::create_directory_symlink(folder / "outside", folder / "tree/link");
    fs::create_directories(folder / "tree/side/empty");
    constexpr int depth = 1200; // more than descriptors, and 24 KB of path
    const std::string name(20, 'd');
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    FileDescriptor level(open((folder / "tree").c_str(), flags));
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(mkdirat(level.number(), name.c_str(), 0700), 0);
        ASSERT_EQ(mkdirat(level.number(), "sibling", 0700), 0);
        level = FileDescriptor(openat(level.number(), name.c_str(), flags));
    }
    EXPECT_EQ(FileTree::countEntries(folder / "tree"), 2U * depth + 4);
    EXPECT_EQ(FileTree::countEntries(folder / "tree/link"), 0U);
    EXPECT_EQ(FileTree::countEntries(folder / "tree/a"), 0U);
    EXPECT_EQ(FileTree::countEntries(folder / "none"), 0U);

    EXPECT_FALSE(FileTree::remove(folder / "tree/link"));
    EXPECT_FALSE(FileTree::remove(folder / "tree"));
    EXPECT_EQ(FileTree::remove(folder / "tree"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(readFile(folder / "outside/kept"), "kept");
}

TEST(ScratchFolder, livesAsLongAsItsObjectAndTidiesUpAfterTheKilled)
{
    const TestFolder folder;
    setenv("TMPDIR", folder.path().c_str(), 1);
    writeFile(folder / "org.parcelo.Parcelo", "another's");
    fs::path live;
    {
        const ScratchFolder first;
        live = first.path();
        EXPECT_EQ(
            live.filename().native().rfind("org.parcelo.Parcelo-" + std::to_string(getpid()), 0),
            0U);
        EXPECT_EQ(fs::status(live).permissions(), fs::perms::owner_all);
        writeFile(live / "sub/file", "");
        chmod((live / "sub").c_str(), 0);
        writeFile(folder / "org.parcelo.Parcelo-1-stale/sub/file", "");
        chmod((folder / "org.parcelo.Parcelo-1-stale/sub").c_str(), 0);
        fs::create_directory_symlink(live, folder / "org.parcelo.Parcelo-1-link");

        const ScratchFolder second;
        EXPECT_TRUE(fs::exists(live));
        EXPECT_FALSE(fs::exists(folder / "org.parcelo.Parcelo-1-stale"));
    }
    EXPECT_EQ(namesIn(folder.path()),
        (std::vector<std::string>{"org.parcelo.Parcelo", "org.parcelo.Parcelo-1-link"}));

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
    try {
        const ScratchFolder none;
        ADD_FAILURE();
    } catch (const ScratchFolderFailure& failure) {
        EXPECT_EQ(failure.what(),
            "cannot make a working folder in " + (folder / "none").native()
                + ": No such file or directory");
    }
    unsetenv("TMPDIR");
}

TEST(PathString, takesPathsApart)
{
    struct Case {
        const char* path;
        const char* last;
        const char* folder;
        const char* withoutExtension;
    };
    const Case cases[] = {
        {"/tmp/a.tar.gz", "a.tar.gz", "/tmp", "/tmp/a.tar"},
        {"/tmp/a.b//", "a.b", "/tmp", "/tmp/a"},
        {"/a", "a", "/", "/a"},
        {"//a", "a", "/", "//a"},
        {"/", "/", "/", "/"},
        {"///", "/", "/", "/"},
        {"", "", "", ""},
        {"a.txt", "a.txt", "", "a"},
        {".bashrc", ".bashrc", "", ".bashrc"},
        {"x.y/.bashrc", ".bashrc", "x.y", "x.y/.bashrc"},
        {"x.y/z", "z", "x.y", "x.y/z"},
        {"a.", "a.", "", "a."},
        {"a..b", "a..b", "", "a."},
        {"\xff.\xfe", "\xff.\xfe", "", "\xff"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(PathString::lastPathComponent(each.path), each.last) << each.path;
        EXPECT_EQ(PathString::stringByDeletingLastPathComponent(each.path), each.folder)
            << each.path;
        EXPECT_EQ(PathString::stringByDeletingPathExtension(each.path), each.withoutExtension)
            << each.path;
    }
    setenv("HOME", "/home/me", 1);
    const std::pair<const char*, const char*> tildes[]
        = {{"~", "/home/me"}, {"~/", "/home/me"}, {"~/Desktop", "/home/me/Desktop"},
            {"~root/x", "/root/x"}, {"~no one/x", "~no one/x"}, {"/a/~", "/a/~"}, {"", ""}};
    for (const auto& [path, expanded] : tildes)
        EXPECT_EQ(PathString::stringByExpandingTildeInPath(path), expanded) << path;
}
