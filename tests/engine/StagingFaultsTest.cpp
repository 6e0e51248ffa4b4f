// A job in which one system call fails: what stood there stands, or the new archive does, and that
// holds all that is not told to be missing.

#include "app/job/ArchiveJob.h"
#include "platform/base/files/ScratchFolder.h"
#include "tests/engine/EngineTest.h"
#include "tests/engine/FailingCalls.h"

namespace
{

const std::vector<unsigned> calls{SYS_openat, SYS_open, SYS_mkdir, SYS_mkdirat, SYS_link,
    SYS_linkat, SYS_symlink, SYS_symlinkat, SYS_readlinkat, SYS_copy_file_range, SYS_read,
    SYS_write, SYS_close, SYS_fsync, SYS_fdatasync, SYS_rename, SYS_renameat, SYS_renameat2,
    SYS_unlink, SYS_unlinkat, SYS_rmdir, SYS_getdents64, SYS_newfstatat, SYS_fstat, SYS_statx,
    SYS_flock, SYS_fcntl, SYS_fchmod, SYS_utimensat, SYS_flistxattr, SYS_fgetxattr, SYS_fsetxattr};

class StagingFaults : public EngineTest
{
protected:
    StagingFaults()
    {
        for (const auto& [place, item] : contents)
            writeFile(folder / item, item + "\n"s);
        setxattr((folder / "in/tree/y").c_str(), "user.k", "v", 1, 0);
        plan(R"sh(for archive; do case "$archive" in */Demo.*) break ;; esac; done
            grep -R '' Demo >"$archive")sh");
    }

    // What the archive holds of each item.
    static constexpr std::pair<const char*, const char*> contents[]
        = {{"Demo/tree/deep/down/x", "in/tree/deep/down/x"}, {"Demo/tree/y", "in/tree/y"},
            {"Demo/one", "in/one"}, {"Demo/tree 2/z", "more/tree/z"}};

    // Whether a message is about the item or a folder that it is in.
    bool isTold(const Lines& messages, fs::path item) const
    {
        const std::string all = testing::PrintToString(messages);
        while (item != folder.path() && !contains(all, "'" + item.native() + "'"))
            item = item.parent_path();
        return item != folder.path();
    }

    struct Fault {
        int number = -1; // of the call that fails
        int reason = 0;
        bool isLasting = false; // so do all calls of its kind after it
        bool canLink = true; // otherwise no hard link can be made
    };

    // Gives how many calls there were.
    int makeWith(const Fault& fault)
    {
        writeFile(archive, "older");
        renew();
        ArchiveJob job(*archiver,
            {.items = {folder / "in/tree", folder / "more/tree", folder / "in/one"},
                .archive = archive,
                .type = type},
            {});
        ArchiveJob::Result result;
        int count = 0;
        unsigned failing = 0;
        const auto ask = [&](unsigned call) {
            const bool isStruck = count++ == fault.number;
            if (isStruck)
                failing = call;
            if (isStruck || (fault.isLasting && call == failing))
                return fault.reason;
            return !fault.canLink && (call == SYS_link || call == SYS_linkat) ? EXDEV : 0;
        };
        askBefore(calls, ask, [&] { result = job.run(); });
        const std::string made = result.isMade ? readFile(*result.archive) : std::string();
        const bool isBeside = result.isMade && *result.archive != archive;
        EXPECT_TRUE((result.isMade && !isBeside) || readFile(archive) == "older");
        if (isBeside)
            fs::remove(*result.archive);
        for (const auto& [place, item] : contents)
            EXPECT_TRUE(!result.isMade || contains(made, place + ":"s + item + "\n")
                || (!result.isWhole && isTold(result.messages, folder / item)))
                << item << " is lost: " << testing::PrintToString(result.messages);
        return count;
    }

    int type = ArchiveTypeMacZip;
    fs::path archive;
};

} // namespace

TEST_F(StagingFaults, whateverFailsIsToldAndTheNextJobTidiesUp)
{
    constexpr int reasons[] = {ENOSPC, EIO, EINTR, EDQUOT, EACCES};
    const std::pair<int, bool> cases[]
        = {{ArchiveTypeMacZip, true}, {ArchiveTypeMacZip, false}, {ArchiveTypeTarGz, true}};
    for (const auto& [itsType, canLink] : cases) {
        type = itsType;
        archive = folder / (type == ArchiveTypeTarGz ? "out/Demo.tar.gz" : "out/Demo.zip");
        const int count = makeWith({.canLink = canLink});
        ASSERT_GT(count, 50);
        unsigned round = 0;
        for (int number = 0; number < count; ++number)
            for (const bool isLasting : {false, true})
                for (const int reason : reasons) {
                    if ((!isFullSweep() && ++round % 97 != 0)
                        || (isLasting && reason == EINTR)) // for ever
                        continue;
                    SCOPED_TRACE(testing::Message()
                        << "type " << type << ", links " << canLink << ", call " << number
                        << ", lasts " << isLasting << ": " << strerror(reason));
                    makeWith({number, reason, isLasting, canLink});
                }
        ScratchFolder::empty(folder / "scratch"); // as whoever holds it does
        makeWith({});
        EXPECT_EQ(namesIn(folder / "out"), Lines{archive.filename()});
        EXPECT_EQ(namesIn(folder / "scratch"), Lines{});
        EXPECT_EQ(namesIn(folder / "in"), (Lines{"one", "tree"}));
        fs::remove(archive);
    }
}
