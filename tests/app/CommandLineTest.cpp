#include "app/commandline/CommandLine.h"

#include "app/job/ToolMessages.h"
#include "tests/support/Test.h"

using Request = CommandLine::Request;

TEST(CommandLine, tellsRequestsFromWrongUsage)
{
    const std::string longName(251, 'n');
    const std::tuple<Lines, Request, std::string> cases[] = {
        {{}, Request::window, ""},
        {{"--to", "d", "--version"}, Request::version, ""},
        {{"--email", "--", "a"}, Request::window, ""},
        {{"--email", "--to=d", "a"}, Request::wrongUsage,
            "the option --email goes with files alone"},
        {{"--here", "--"}, Request::wrongUsage, "there is no FILE"},
        {{"--quiet", "a"}, Request::wrongUsage, "there is no --to FOLDER"},
        {{"--to", "d"}, Request::wrongUsage, "there is no FILE"},
        {{"--to"}, Request::wrongUsage, "the option --to needs a value"},
        {{"--to", "d", "--", "--help"}, Request::archive, ""},
        {{"--to=d", "-x"}, Request::wrongUsage, "no such option: '-x'"},
        {{"--to=d", "--quiet=1", "a"}, Request::wrongUsage, "the option --quiet takes no value"},
        {{"--to=d", "--level=10", "a"}, Request::wrongUsage, "the level is a digit, not '10'"},
        {{"--to=d", "--type", "rar", "a"}, Request::wrongUsage, "no such type: 'rar'"},
        {{"--to=d", "--password-stdin", "a"}, Request::wrongUsage,
            "only the type dmg takes a password"},
        {{"--to=d", "--name=", "a"}, Request::wrongUsage, "'' cannot be the name of a file"},
        {{"--to=d", "--name=...zip", "a"}, Request::wrongUsage,
            "'..' cannot be the name of a file"},
        {{"--to=d", "--name=a/b", "a"}, Request::wrongUsage, "'a/b' cannot be the name of a file"},
        {{"--to=d", "--name", longName, "a"}, Request::archive, ""},
        {{"--to=d", "--name", longName + "n", "a"}, Request::wrongUsage, "the name is too long"},
    };
    for (const auto& [arguments, request, problem] : cases) {
        const CommandLine line = CommandLine::parse(arguments);
        EXPECT_EQ(line.problem, problem);
        EXPECT_EQ(line.request, request) << testing::PrintToString(arguments);
    }
}

TEST(ToolMessages, keepsTheWordsOfToolsAndTheirStatuses)
{
    const std::tuple<Lines, int, Lines> cases[] = {
        {{"  add", "ing: a\nwarn", "ing: b\n  adding: c\n"}, 0, {"zip: warning: b"}},
        {{"first\nsecond"}, 18, {"zip ended with status 18: first", "zip: second"}},
        {{"\033[2J\r\u00e9\x7f\n\n"}, 0, {"zip: ?[2J?\u00e9?"}},
    };
    for (const auto& [chunks, status, lines] : cases) {
        ToolMessages messages("zip");
        for (const std::string& chunk : chunks)
            messages.addOutput(chunk);
        messages.taskCompleted(status);
        EXPECT_EQ(messages.lines(), lines);
    }

    ToolMessages many("zip");
    many.addOutput(std::string(1'000'000, 'x') + "\n");
    for (int run = 0; run < 3; ++run) {
        for (int line = 0; line < 300; ++line)
            many.addOutput("word\n");
        many.taskCompleted(0);
    }
    EXPECT_EQ(many.lines().size(), 201U);
    EXPECT_EQ(many.lines().back(), "… and 701 more");
    EXPECT_LT(many.lines().front().size(), 10'000U);
}
