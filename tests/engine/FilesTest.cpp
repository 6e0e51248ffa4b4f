// Moving, copying, removing and counting files, and the scratch folder.

#include "platform/base/files/FileCopy.h"
#include "platform/base/files/FileMove.h"
#include "platform/base/files/FileTree.h"
#include "platform/base/files/ScratchFolder.h"
#include "tests/engine/FailingCalls.h"
#include "tests/support/TreeSnapshot.h"

TEST(FileMove, neverOverwritesWhateverTheFileSystemCan)
{
    // How a rename that must not overwrite fails, and a hard link.
    const std::pair<int, int> cases[] = {{0, 0}, {EINVAL, 0}, {ENOSYS, EMLINK}, {EINVAL, EPERM},
        {EOPNOTSUPP, EOPNOTSUPP}, {EPERM, EACCES}};
    for (const auto& [toRename, toLink] : cases)
        letFail({{SYS_renameat2, toRename}, {SYS_linkat, toLink}}, [&] {
            const TestFolder folder;
            writeFile(folder / "new", "new");
            writeFile(folder / "taken", "taken");
            EXPECT_EQ(FileMove::moveItem(folder / "new", folder / "taken"), std::errc::file_exists);
            EXPECT_FALSE(FileMove::moveItem(folder / "new", folder / "moved"));
            EXPECT_EQ(readFile(folder / "taken") + readFile(folder / "moved"), "takennew");
            EXPECT_EQ(namesIn(folder.path()), (Names{"moved", "taken"}));
        });

    const TestFolder folder; // where the second link can be made, and the first one not be removed
    writeFile(folder / "new", "new");
    bool hasFailed = false;
    const auto ask = [&](unsigned call) {
        const int reason = call == SYS_renameat2 ? EINVAL : EIO;
        return call == SYS_unlinkat && std::exchange(hasFailed, true) ? 0 : reason;
    };
    askBefore({SYS_renameat2, SYS_unlinkat}, ask, [&] {
        EXPECT_EQ(FileMove::moveItem(folder / "new", folder / "moved"), std::errc::io_error);
    });
    EXPECT_EQ(namesIn(folder.path()), Names{"new"});
}

TEST(FileMove, toAnotherFileSystemIsWholeOrNothing)
{
    const TestFolder folder;
    const EnvironmentVariable temporary("TMPDIR", "/dev/shm");
    const TestFolder other;
    const fs::path from = folder / "item";
    const fs::path to = other / "item";
    writeFile(from, randomBytes(3'000'000, 1));
    chmod(from.c_str(), 0640);
    setTime(from, 1'000'000'000);
    const auto before = snapshot(folder.path());
    writeFile(other / "taken", "taken");
    if (::rename((other / "taken").c_str(), (folder / "taken").c_str()) == 0)
        GTEST_SKIP() << "no second file system";
    EXPECT_EQ(FileMove::moveItem(from, other / "taken"), std::errc::file_exists);
    std::stop_source stopping;
    stopping.request_stop();
    EXPECT_EQ(FileMove::moveItem(from, to, stopping.get_token()), std::errc::operation_canceled);
    // In an older kernel, too.
    letFail({{SYS_copy_file_range, EXDEV}, {SYS_write, ENOSPC}},
        [&] { EXPECT_EQ(FileMove::moveItem(from, to), std::errc::no_space_on_device); });
    for (int left : {0, 1}) { // of the item, of its copy
        const auto ask = [&](unsigned) { return left-- == 0 ? EIO : 0; };
        askBefore({SYS_fsync}, ask,
            [&] { EXPECT_EQ(FileMove::moveItem(from, to), std::errc::io_error); });
    }
    EXPECT_EQ(namesIn(other.path()), Names{"taken"});
    EXPECT_EQ(differences(before, snapshot(folder.path())), Names{});

    writeFile(other / ".item.part-abcdef", "of a process that was killed");
    letFail({{SYS_copy_file_range, EXDEV}}, [&] { EXPECT_FALSE(FileMove::moveItem(from, to)); });
    EXPECT_EQ(readFile(other / "taken"), "taken");
    fs::remove(other / "taken");
    EXPECT_EQ(differences(before, snapshot(other.path())), Names{});
    EXPECT_TRUE(fs::is_empty(folder.path()));
    // Back, to one without permissions and times.
    letFail({{SYS_fchmod, EPERM}, {SYS_utimensat, EIO}},
        [&] { EXPECT_FALSE(FileMove::moveItem(to, from)); });
}

TEST(FileCopy, keepsAllOfATreeOfAnyDepthAndTellsWhatItCannot)
{
    const TestFolder folder;
    const fs::path from = folder / "from";
    const fs::path to = folder / "to";
    constexpr unsigned depth = 1200; // more than descriptors, and 24 KB of path
    makeNestedFolders(from, std::string(20, 'd'), depth);
    writeFile(from / "sub/\xff", someText(700'000));
    fs::create_symlink("/no/where", from / "link");
    fs::create_directory_symlink("..", from / "sub/loop");
    makeFifo(from / "pipe"); // must not hold up the rest
    for (const char* path : {"sub/\xff", "link", "sub"})
        setTime(from / path, 1'000'000'000);
    chmod((from / "sub").c_str(), 0510);
    EXPECT_EQ(FileTree::countEntries(from), depth + 6);
    for (const char* name : {"link", "sub/loop", "sub/\xff", "none"})
        EXPECT_EQ(FileTree::countEntries(from / name), 0U);
    std::vector<fs::path> failed;
    const auto note = [&](const fs::path& item, std::error_code) { failed.push_back(item); };
    EXPECT_EQ(
        FileCopy::copyItem(from, to, {.onFailure = note}), std::errc::operation_not_supported);
    EXPECT_EQ(failed, std::vector{from / "pipe"});
    fs::remove(from / "pipe");
    EXPECT_EQ(differences(snapshot(from), snapshot(to)), Names{});
    for (const bool canLink : {false, true})
        letFail({{SYS_linkat, canLink ? 0 : EPERM}}, [&] {
            EXPECT_FALSE(FileCopy::copyItem(from, folder / "linked", {.linking = true}));
            EXPECT_EQ(differences(snapshot(from), snapshot(folder / "linked")), Names{});
            EXPECT_EQ(fs::hard_link_count(from / "sub/\xff"), canLink ? 2U : 1U);
            EXPECT_FALSE(FileTree::remove(folder / "linked", FileTree::Permissions::overridden));
        });
    for (const char* item : {"sub", "sub/\xff", "link"})
        EXPECT_EQ(FileCopy::copyItem(from / item, to / item), std::errc::file_exists);
    std::stop_source stopping;
    stopping.request_stop();
    EXPECT_EQ(FileCopy::copyItem(from, folder / "stopped", {.stop = stopping.get_token()}),
        std::errc::operation_canceled);
    EXPECT_TRUE(fs::remove(folder / "stopped"));
    EXPECT_FALSE(FileTree::remove(to / "link"));
    EXPECT_FALSE(FileTree::remove(to, FileTree::Permissions::overridden));
    EXPECT_EQ(FileTree::remove(to), std::errc::no_such_file_or_directory);
    EXPECT_EQ(namesIn(folder.path()), Names{"from"});
}

TEST(FileCopy, tellsOfAFileThatIsNotAsItWas)
{
    const auto changed = FileCopy::changedWhileRead();
    const auto because
        = [](int reason) { return std::error_code(reason, std::generic_category()); };
    // An attribute of the file, what happens to it before the first call of a kind, how that call
    // fails, what is told, and whether there is a copy.
    const std::tuple<std::string, const char*, unsigned, int, std::error_code, bool> cases[] = {
        {"", "printf more >>file", SYS_copy_file_range, 0, changed, true},
        {"", ": >file", SYS_copy_file_range, 0, changed, true},
        {"", "printf C 1<>file", SYS_copy_file_range, 0, changed, true},
        {"", "ln file another", SYS_copy_file_range, 0, {}, true},
        {"", ":", SYS_close, EDQUOT, because(EDQUOT), false}, // some tell only now of a quota
        {"", ":", SYS_fchmod, EPERM, {}, true}, // not every file system has what these set
        {"", ":", SYS_utimensat, EOPNOTSUPP, {}, true},
        {"", ":", SYS_utimensat, EIO, FileCopy::attributesLost(), true},
        {"user.k", ":", SYS_fsetxattr, ENOSPC, FileCopy::attributesLost(), true},
        {"system.posix_acl_access", ":", SYS_fsetxattr, EOPNOTSUPP, {}, true},
    };
    // An access control list that names a user: entries of tag, permissions and number.
    constexpr std::uint16_t list[] = {2, 0, 1, 6, 0xffff, 0xffff, 2, 4, 1, 0, 4, 4, 0xffff, 0xffff,
        16, 4, 0xffff, 0xffff, 32, 4, 0xffff, 0xffff};
    for (const auto& [attribute, meanwhile, call, reason, told, isThere] : cases) {
        SCOPED_TRACE(testing::Message() << meanwhile << call << strerror(reason));
        const TestFolder folder;
        writeFile(folder / "file", "content");
        if (!attribute.empty()
            && setxattr((folder / "file").c_str(), attribute.c_str(), list, sizeof list, 0) != 0)
            continue; // not on every file system
        bool hasCome = false;
        const auto ask = [&, &script = meanwhile, &error = reason](unsigned) {
            if (!std::exchange(hasCome, true))
                run({"sh", "-c", script}, {.folder = folder.path()});
            return error;
        };
        std::error_code failure;
        askBefore(
            {call}, ask, [&] { failure = FileCopy::copyItem(folder / "file", folder / "copy"); });
        EXPECT_TRUE(hasCome);
        EXPECT_EQ(failure, told) << failure.message();
        EXPECT_EQ(fs::remove(folder / "copy"), isThere);
    }
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
        EXPECT_TRUE(fs::is_empty(folder / "to" / other)) << side << ": led outside";
    }
}

TEST(ScratchFolder, livesAsLongAsItsObjectAndTidiesUpAfterTheKilled)
{
    const TestFolder folder;
    const EnvironmentVariable temporary("TMPDIR", folder.path());
    const fs::path stale = folder / "org.parcelo.Parcelo-1-staled";
    {
        const ScratchFolder first;
        const fs::path live = first.path();
        EXPECT_EQ(fs::status(live).permissions(), fs::perms::owner_all);
        fs::create_directory_symlink(live, folder / "org.parcelo.Parcelo-1-linked");
        for (const fs::path& parent : {live, stale}) {
            writeFile(parent / "sub/file", "");
            chmod((parent / "sub").c_str(), 0);
        }
        chmod(stale.c_str(), S_IRWXU | S_ISGID); // as in some folders that a group shares
        fs::create_directory(folder / "org.parcelo.Parcelo-1-person"); // open to others: not ours
        const ScratchFolder second;
        EXPECT_TRUE(fs::exists(live));
        EXPECT_FALSE(fs::exists(stale));
        ScratchFolder::empty(live);
        EXPECT_TRUE(fs::is_empty(live));
        const fs::path other = live / "other";
        const auto replace = [&](unsigned) {
            fs::rename(other, live / "former");
            fs::create_directory(other);
            return 0;
        };
        fs::create_directory(other);
        askBefore({SYS_flock}, replace,
            [&] { EXPECT_FALSE(ScratchFolder::hold(other)) << "another one than is there"; });
        EXPECT_TRUE(ScratchFolder::hold(other));
    }
    EXPECT_EQ(namesIn(folder.path()),
        (Names{"org.parcelo.Parcelo-1-linked", "org.parcelo.Parcelo-1-person"}));
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
    EXPECT_THROW(ScratchFolder(folder / "none"), ScratchFolderFailure);
}
