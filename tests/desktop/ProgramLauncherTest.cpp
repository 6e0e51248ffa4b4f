#include "platform/desktop/services/ProgramLauncher.h"

#include "platform/desktop/services/DefaultApplication.h"
#include "tests/desktop/StandIns.h"

TEST(ProgramLauncher, tellsOnceWhetherTheProgramWorksIfAnybodyStillWantsToKnow)
{
    const std::tuple<std::string, bool, int> cases[]
        = {{"exit 0", true, 20000}, {"exit 4", false, 20000}, {"kill -9 $$", false, 20000},
            // Runs until its file is gone; nobody waits for that.
            {"while [ -e \"$0\" ]; do /bin/sleep 0.1; done; exit 1", true, 50}};
    for (const auto& [script, works, milliseconds] : cases) {
        const standins::Programs programs;
        programs.addScript("program", script);
        for (const std::string program : {"program", "not there"}) {
            std::vector<bool> told;
            QObject context;
            auto isGoneSoon = std::make_unique<QObject>();
            for (QObject* each : {isGoneSoon.get(), &context})
                ProgramLauncher::launch(
                    {.program = program}, each, [&](bool itWorks) { told.push_back(itWorks); },
                    std::chrono::milliseconds(milliseconds));
            isGoneSoon.reset();
            EXPECT_TRUE(told.empty()) << "told before the call returned";
            EXPECT_TRUE(standins::waitForEndOf(context));
            EXPECT_EQ(told, std::vector{works && program == "program"}) << script;
        }
    }
}
