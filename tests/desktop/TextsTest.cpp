// Texts that come from elsewhere: lists of files, and the script of a message.

#include "platform/desktop/services/ScriptReader.h"
#include "platform/desktop/services/UriList.h"
#include "tests/support/qt/QtTest.h"

using enum UriList::Refusal;

TEST(UriList, findsEveryPathAndSaysWhatItRefuses)
{
    struct Case {
        std::string list;
        std::vector<fs::path> paths;
        std::vector<UriList::Refusal> refused = {};
    };
    const Case lists[] = {
        {"# a comment\r\n\r\nfile:///a\r\nfile:///b\nfile:///a", {"/a", "/b", "/a"}},
        {"FILE:///a\nfile:/b\nfile://LocalHost/c\nfile://Here/d", {"/a", "/b", "/c", "/d"}},
        {"file:///caf%E9%0a%25%2f.txt\nfile:///caf\xc3\xa9 b",
            {"/caf\xe9\n%/.txt", "/caf\xc3\xa9 b"}},
        {"file:///folder/\nfile:///\nfile:////x//\r\n\0\0"s, {"/folder", "/", "//x"}},
        {"trash:///a\nfile:///b\nsmb://Here/c", {"/b"}, {otherScheme, otherScheme}},
        {"file://elsewhere/a\nfile://localhost.evil/a", {}, {otherHost, otherHost}},
        {"file:///a%\nfile:///a%4\nfile:///a%4g\nfile:///a%00b", {}, std::vector(4, malformed)},
        {"file:///a\0b\n/a\nb\n:\nfile:\nfile:a\nfile://Here"s, {}, std::vector(7, malformed)},
        {"file:///a#1.txt\nfile:///a?b", {}, std::vector(2, malformed)},
    };
    const Case copies[] = {{"cut\r\nfile:///a\ncut", {"/a"}, {malformed}}, {"file:///a", {"/a"}},
        {"copied\nfile:///a", {"/a"}, {malformed}}};
    const auto expect = [](const UriList::FilePaths& result, const Case& each) {
        EXPECT_EQ(result.paths, each.paths) << each.list;
        std::vector<UriList::Refusal> reasons;
        for (const UriList::RefusedLine& refused : result.refused)
            reasons.push_back(refused.reason);
        EXPECT_EQ(reasons, each.refused) << each.list;
    };
    for (const Case& each : lists)
        expect(UriList::filePaths(each.list, "here"), each);
    for (const Case& each : copies)
        expect(UriList::copiedFilePaths(each.list, "here"), each);
    EXPECT_EQ(UriList::fileUri("/a b/it's, 50%&#?\xe9~_-."),
        "file:///a%20b/it%27s%2C%2050%25%26%23%3F%E9~_-.");
}

// The script that the program says for an attachment; anything else is an error.
TEST(ScriptReader, readsTheMessageAndItsFileAndNothingElse)
{
    const std::string start
        = "tell application \"Mail\"\nset _m to make outgoing message\ntell _m\n"
          "set visible to true\ntell content\nset _f to \"";
    const std::string end = "\"\nmake new attachment with properties {file name:_f} at after the "
                            "last character\nend tell\nend tell\nactivate\nend tell\n";
    const std::string odd = "/it's, 50% & #\\n \xff\n}.zip";
    const std::pair<std::string, std::optional<std::vector<ScriptReader::Command>>> cases[] = {
        {"", std::vector<ScriptReader::Command>()},
        {start + odd + end + "\n" + start + "/a" + end,
            {{ScriptReader::ComposeMessage{odd}, ScriptReader::ComposeMessage{"/a"}}}},
        {start + "/a\" & (do shell script \"id\") & \"" + end, {}}, // a quote ends the path
        {start + "/a" + '\0' + "b" + end, {}},
        {start + "/a" + end + "x", {}},
        {start + "/a" + end.substr(0, 20), {}},
    };
    for (const auto& [source, commands] : cases)
        EXPECT_EQ(ScriptReader::read(source), commands) << source;
}
