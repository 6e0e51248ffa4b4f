#include "platform/desktop/services/ProgramLauncher.h"

#include "platform/desktop/services/DefaultApplication.h"
#include "tests/desktop/StandIns.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <optional>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using standins::Programs;

TEST(ProgramLauncher, tellsOnceWhetherTheProgramWorks)
{
    struct Case {
        std::string script; // empty: there is no such program
        bool works;
    };
    const Case cases[] = {
        {"exit 0", true},
        {"exit 4", false},
        {"kill -9 $$", false},
        {"/bin/sleep 1; exit 1", true}, // nobody waits for that
        {"", false},
    };
    for (const Case& each : cases) {
        const Programs programs;
        if (!each.script.empty())
            programs.addScript("program", each.script);
        QObject context;
        std::vector<bool> told;
        ProgramLauncher::launch(
            {.program = "program"}, &context, [&](bool works) { told.push_back(works); }, 300ms);
        EXPECT_TRUE(told.empty()) << "told before the call returned";
        EXPECT_TRUE(standins::spinUntil([&] { return context.children().isEmpty(); }));
        EXPECT_EQ(told, std::vector{each.works}) << each.script;
    }
}

TEST(ProgramLauncher, tellsNobodyWhenTheAskerIsGone)
{
    const Programs programs;
    programs.addScript("program", "exit 0");
    programs.addScript("xdg-mime", "echo a.desktop");
    bool isTold = false;
    {
        QObject context;
        ProgramLauncher::launch(
            {.program = "program"}, &context, [&](bool) { isTold = true; }, 50ms);
        DefaultApplication::query(
            QStringLiteral("a/b"), &context, [&](const QString&) { isTold = true; });
    }
    bool isOver = false;
    QTimer::singleShot(200ms, QCoreApplication::instance(), [&] { isOver = true; });
    EXPECT_TRUE(standins::spinUntil([&] { return isOver; }));
    EXPECT_FALSE(isTold);
}

TEST(DefaultApplication, isWhatXdgMimeSaysOrNothing)
{
    const std::pair<std::string, const char*> cases[] = {
        {"echo ' org.a.B.desktop '; echo second; exit 1", "org.a.B.desktop"},
        {"exit 0", ""},
        {"kill -9 $$", ""},
        {"", ""},
    };
    for (const auto& [script, id] : cases) {
        const Programs programs;
        if (!script.empty())
            programs.addScript("xdg-mime", script);
        QObject context;
        std::vector<QString> told;
        DefaultApplication::query(
            QStringLiteral("a/b"), &context, [&](const QString& found) { told.push_back(found); });
        EXPECT_TRUE(told.empty());
        EXPECT_TRUE(standins::spinUntil([&] { return context.children().isEmpty(); }));
        EXPECT_EQ(told, std::vector{QString::fromLatin1(id)}) << script;
    }
}
