#include "platform/desktop/services/ProgramLauncher.h"

#include "platform/desktop/services/DefaultApplication.h"
#include "tests/desktop/StandIns.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using standins::Programs;

TEST(ProgramLauncher, tellsOnceWhetherTheProgramWorksWhoeverStillWantsToKnow)
{
    struct Case {
        std::string script;
        bool works;
        std::chrono::milliseconds watched = 20s;
    };
    const Case cases[] = {{"exit 0", true}, {"exit 4", false}, {"kill -9 $$", false},
        // Runs until its file is gone; nobody waits for that.
        {"while [ -e \"$0\" ]; do /bin/sleep 0.1; done; exit 1", true, 50ms}, {"", false}};
    for (const Case& each : cases) {
        const Programs programs;
        if (!each.script.empty())
            programs.addScript("program", each.script);
        std::vector<bool> told;
        const auto launch = [&](QObject& context) {
            ProgramLauncher::launch(
                {.program = "program"}, &context, [&](bool works) { told.push_back(works); },
                each.watched);
        };
        {
            QObject isGoneSoon;
            launch(isGoneSoon);
        }
        QObject context;
        launch(context);
        EXPECT_TRUE(told.empty()) << "told before the call returned";
        EXPECT_TRUE(standins::waitForEndOf(context));
        EXPECT_EQ(told, std::vector{each.works}) << each.script;
    }
}

TEST(DefaultApplication, isTheFirstLineOfXdgMimeOrNothing)
{
    const std::pair<std::string, const char*> cases[]
        = {{"echo ' org.a.B.desktop '; echo second; exit 1", "org.a.B.desktop"}, {"exit 0", ""},
            {"", ""}};
    for (const auto& [script, id] : cases) {
        const Programs programs;
        if (!script.empty())
            programs.addScript("xdg-mime", script);
        QObject context;
        std::vector<QString> told;
        DefaultApplication::query(
            "a/b", &context, [&](const QString& found) { told.push_back(found); });
        EXPECT_TRUE(standins::waitForEndOf(context));
        EXPECT_EQ(told, std::vector<QString>{id}) << script;
    }
}
