#include "tests/window/Program.h"

#include <climits>

using LifeCycle = Program;

TEST_F(LifeCycle, beginsWithWhatWasStored)
{
    // What was stored, and is then: whether it looks for updates, and the number of its runs.
    const std::tuple<const char*, bool, int, int> cases[] = {{"SUCheckAtStartup", true, 7, 8},
        {"SUCheckAtStartup", false, -5, 1}, {"SUCheckAtStartup", false, INT_MAX, INT_MAX}};
    for (const auto& [key, checks, before, run] : cases) {
        start({{"CheckAtStartup", {}}, {key, checks}, {"R232", before}});
        EXPECT_EQ(stored("CheckAtStartup").toBool(), checks);
        EXPECT_FALSE(stored("SUCheckAtStartup").toBool());
        EXPECT_EQ(controller().runCount(), run);
    }
    EXPECT_EQ(AppController::randomProductId(0x1p32 + 86396), 2); // in 2137
    EXPECT_TRUE(stored("SUFeedURL").toString().startsWith(PARCELO_SITE "parcelo/appcast"));

    const QRect frame(123, 77, 543, 432);
    window().setGeometry(frame);
    EXPECT_TRUE(waitFor([] { return stored("Window Frame MainWindowAutosave").isValid(); }));
    start();
    EXPECT_EQ(window().size(), frame.size());
    EXPECT_TRUE(isOnWayland() || window().geometry() == frame) << "no place is known there";
}

TEST_F(LifeCycle, closingTheWindowQuitsUnlessTheProgramShallStay)
{
    for (const bool stays : {true, false}) {
        start({{"StayRunningOnWindowClose", stays}});
        const Path scratch = controller().tmpFolder();
        EXPECT_EQ(status(scratch).permissions(), std::filesystem::perms::owner_all);
        type(Qt::CTRL | Qt::Key_W);
        EXPECT_EQ(window().isMinimized(), stays);
        EXPECT_EQ(hasQuit, !stays);
        EXPECT_EQ(exists(scratch), stays) << "goes when the program ends";
    }
}
