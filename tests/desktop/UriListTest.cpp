#include "platform/desktop/services/UriList.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace
{

struct Case {
    std::string list;
    std::vector<std::filesystem::path> paths = {};
    std::vector<UriList::Refusal> refused = {};
};

void expect(const UriList::FilePaths& result, const Case& expected)
{
    EXPECT_EQ(result.paths, expected.paths) << expected.list;
    std::vector<UriList::Refusal> reasons;
    for (const UriList::RefusedLine& each : result.refused) {
        reasons.push_back(each.reason);
        EXPECT_NE(expected.list.find(each.line), std::string::npos) << each.line;
    }
    EXPECT_EQ(reasons, expected.refused) << expected.list;
}

} // namespace

TEST(UriList, findsEveryPathAndSaysWhatItRefuses)
{
    using enum UriList::Refusal;
    const Case cases[] = {
        {"# a comment\r\n\r\nfile:///a\r\nfile:///b\nfile:///a", {"/a", "/b", "/a"}},
        {"FILE:///a\nfile:/b\nfile://LocalHost/c\nfile://Here/d", {"/a", "/b", "/c", "/d"}},
        {"file:///caf%E9%0a%25%2f.txt\nfile:///caf\xc3\xa9 b",
            {"/caf\xe9\n%/.txt", "/caf\xc3\xa9 b"}},
        {"file:///folder/\nfile:///\nfile:////x//", {"/folder", "/", "//x"}},
        {"file:///a\r\n\0\0"s, {"/a"}},
        {"trash:///a\nfile:///b\nsmb://Here/c", {"/b"}, {otherScheme, otherScheme}},
        {"file://elsewhere/a\nfile://localhost.evil/a", {}, {otherHost, otherHost}},
        {"file:///a%\nfile:///a%4\nfile:///a%4g\nfile:///a%00b", {}, std::vector(4, malformed)},
        {"file:///a\0b\nfile:///c"s, {"/c"}, {malformed}},
        {"/a\nb\n:\nfile:\nfile:a\nfile://\nfile://Here", {}, std::vector(7, malformed)},
        {"file:///a#1.txt\nfile:///a?b", {}, std::vector(2, malformed)},
    };
    for (const Case& each : cases)
        expect(UriList::filePaths(each.list, "here"), each);
    for (const Case& each : {Case{"copy\nfile:///a\nfile:///b", {"/a", "/b"}},
             Case{"cut\r\nfile:///a", {"/a"}}, Case{"file:///a", {"/a"}},
             Case{"copied\nfile:///a\ncut", {"/a"}, {malformed, malformed}}})
        expect(UriList::copiedFilePaths(each.list, "here"), each);
}

TEST(UriList, makesUrisThatLeadBackToTheSameBytes)
{
    EXPECT_EQ(UriList::fileUri("/a b/it's, 50%&#?\xe9~_-."),
        "file:///a%20b/it%27s%2C%2050%25%26%23%3F%E9~_-.");
    std::string everyByte = "/";
    for (int byte = 1; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    const auto back = UriList::filePaths(UriList::fileUri(everyByte), "");
    EXPECT_EQ(back.paths, std::vector<std::filesystem::path>{everyByte});
}
