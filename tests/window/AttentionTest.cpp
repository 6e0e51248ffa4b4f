// What the desktop is told of jobs: of the window's, and of those without one.

#include "app/window/HereJob.h"
#include "app/window/JobAttention.h"
#include "tests/desktop/StandIns.h"
#include "tests/window/Program.h"

#include <QProgressBar>
#include <QSignalSpy>

using namespace std::chrono_literals;
using enum standins::Answer;

namespace
{

class Attention : public ::testing::Test
{
protected:
    Attention()
    {
        auto settings = std::make_unique<UserDefaults>(folder / "settings");
        settings->setInteger(ArchiveTypePlainZip, "ArchiveType");
        UserDefaults::setStandardUserDefaults(std::move(settings));
    }
    bool waitForCall(const std::string& part) const
    {
        const auto isThere = [&] { return programs.calls().find(part) != std::string::npos; };
        return QTest::qWaitFor(isThere, 20000) || (ADD_FAILURE() << programs.calls(), false);
    }
    // As long as it takes: the program may not know yet that the notification is shown.
    static bool press(const QString& button, const std::function<bool()>& isObeyed)
    {
        return QTest::qWaitFor([&] {
            standins::signal("ActionInvoked", {7U, button});
            return isObeyed();
        });
    }

    const support::TestFolder folder;
    const standins::Programs programs;
    const std::unique_ptr<QObject> service
        = standins::serve("org.freedesktop.Notifications", yes, programs);
    const std::unique_ptr<QObject> manager
        = standins::serve("org.gnome.SessionManager", yes, programs);
    support::NotingWorkspace workspace;
};

} // namespace

TEST_F(Attention, withoutAWindowANotificationShowsTheProgressAndCancels)
{
    support::writeFile(folder / "in/large", "");
    std::filesystem::resize_file(folder / "in/large", std::uintmax_t{40} << 30);
    HereJob job({folder / "in/large"}, {.untilShown = 0ms, .untilHeldOff = 0ms});
    QSignalSpy ended(&job, &HereJob::ended);
    QSignalSpy finished(&job, &HereJob::finished);
    job.start();
    EXPECT_TRUE(waitForCall("<Making an archive> <large.zip: 0%> <cancel Cancel>"));
    EXPECT_TRUE(waitForCall("org.gnome.SessionManager.Inhibit "));
    EXPECT_TRUE(press("cancel", [&] { return finished.count() == 1; }));
    EXPECT_TRUE(waitForCall("org.gnome.SessionManager.Uninhibit <5>"));
    EXPECT_EQ(ended.value(0).value(0), 130);
    EXPECT_EQ(support::namesIn(folder / "in"), std::vector<std::string>{"large"});
}

TEST_F(Attention, withoutAWindowTheNotificationLeadsToTheArchiveUntilItIsGone)
{
    support::writeFile(folder / "in/a", "");
    const std::filesystem::path scratch = folder / "tmp";
    std::filesystem::create_directory(scratch);
    const support::EnvironmentVariable temporary("TMPDIR", scratch);
    HereJob job({folder / "in/a", "none"}, {.untilShown = 1h, .untilHeldOff = 1h});
    QSignalSpy finished(&job, &HereJob::finished);
    job.start();
    const std::filesystem::path archive = folder / "in/a.zip";
    EXPECT_TRUE(waitForCall("<Not everything is in the archive> <" + archive.native()
        + "\nnone: No such file or directory> <default Show show Show open Open>"));
    ASSERT_TRUE(press("show", [&] { return !workspace.revealed.empty(); }));
    EXPECT_EQ(workspace.revealed.front(), archive);
    ASSERT_TRUE(press("open", [&] { return !workspace.opened.empty(); }));
    EXPECT_EQ(workspace.opened.front(), archive);
    EXPECT_EQ(finished.count(), 0);
    EXPECT_EQ(support::namesIn(scratch), std::vector<std::string>{}) << "is held meanwhile";
    standins::signal("NotificationClosed", {7U, 2U});
    EXPECT_TRUE(QTest::qWaitFor([&] { return finished.count() == 1; }));
}

TEST_F(Attention, whoUsesAnotherProgramIsToldOfTheWindowsLongJobs)
{
    const ArchiveJob::Result made{.archive = "/d/a.zip", .isMade = true, .isWhole = true};
    const ArchiveJob::Result stopped{.archive = "/d/a.zip"};
    const ArchiveJob::Result failed{
        .problem = ArchiveProblem{.kind = ArchiveProblem::Kind::fullDisk, .archive = "/d/a.zip"}};
    // Whether the window is used, from when on a job is long, what came of it, and what is told.
    const std::tuple<bool, std::chrono::milliseconds, ArchiveJob::Result, std::string> cases[] = {
        {false, 1h, made, ""},
        {true, 0ms, made, ""},
        {false, 0ms, stopped, ""},
        {false, 0ms, made,
            "<The archive is made> </d/a.zip> <default Open Parcelo show Show open Open>"},
        {false, 0ms, failed,
            "<The archive could not be made> <Unable to write to '/d/a.zip'. The disk of "
            "that folder is full.> <default Open Parcelo>"},
    };
    for (const auto& [isUsed, untilTold, result, told] : cases) {
        const std::size_t before = programs.calls().size();
        QWidget window;
        QProgressBar bar;
        if (isUsed) {
            window.show();
            window.activateWindow();
            EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        }
        JobAttention attention(window, bar, {.untilHeldOff = 0ms, .untilTold = untilTold});
        QSignalSpy wanted(&attention, &JobAttention::windowWanted);
        attention.begin();
        const auto since = [&] { return programs.calls().substr(before); };
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return since().find(".Inhibit ") != std::string::npos; }));
        attention.end(result, {.toWindow = true, .toArchive = true});
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return since().find(".Uninhibit ") != std::string::npos
                && since().find(told) != std::string::npos;
        })) << since();
        EXPECT_EQ(since().find(".Notify ") == std::string::npos, told.empty());
        if (told.empty())
            continue;
        EXPECT_TRUE(press("default", [&] { return wanted.count() > 0; }));
        window.show();
        window.activateWindow(); // where one sees what has come of it
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return since().find(".CloseNotification") != std::string::npos; }));
    }
}

TEST_F(Program, theIconShowsTheProgressOfAJobWhileItLasts)
{
    const EnvironmentVariable bus("DBUS_SESSION_BUS_ADDRESS", standins::sessionBus());
    const standins::Listener listener;
    support::writeFile(folder / "in/a", "");
    start();
    drop({folder / "in/a"});
    endSheet("savePanel", Qt::Key_Return);
    EXPECT_TRUE(waitFor([&] { return listener.heard.ends_with(" hidden\n"); }));
    EXPECT_GT(std::ranges::count(listener.heard, '\n'), 1) << listener.heard;
}
