// Property lists: both ways between our reader and writer and Python's, and what is refused.

#include "platform/base/bundle/PropertyList.h"

#include "system/TextNumber.h"
#include "tests/support/Test.h"

#include <limits>

using namespace PropertyList;

constexpr auto largest = std::numeric_limits<std::int64_t>::max();

TEST(PropertyList, goesBothWaysBetweenPythonAndUsAndIsWrittenInPlaceOfTheFile)
{
    const TestFolder folder;
    const Dictionary values{{"big", largest}, {"data", Data{"\0\xff"s}},
        {"date", Date(1773489630s)}, {"list", Array{1, Array{}, Dictionary{}, "a", ""}},
        {"no", false}, {"real", -0.1}, {"small", -largest - 1}, {"text", "ä <&> \"'\n\t😀"},
        {"yes", true}, {"<key> & ö", 1}};
    writeFile(folder / "file", "old");
    fs::permissions(folder / "file", fs::perms{0640});
    fs::create_symlink("file", folder / "ours");
    for (const Value& value : {Value("a\0b"s), Value("\r"), Value("\xed\xa0\x80"),
             Value(std::numeric_limits<double>::quiet_NaN()), Value(Date(100000000h))})
        EXPECT_FALSE(writeToFile({{"a", Array{value}}}, folder / "ours")) << value.index();
    EXPECT_EQ(readFile(folder / "file"), "old");
    ASSERT_TRUE(writeToFile(values, folder / "ours"));
    EXPECT_EQ(namesIn(folder.path()), (Names{"file", "ours"}));
    EXPECT_EQ(fs::status(folder / "file").permissions(), fs::perms{0640});
    const auto python = run({"python3", "-c", R"(import plistlib
ours = plistlib.load(open('ours', 'rb'))
print(ascii(ours), end='')
for form in plistlib.PlistFormat:
    plistlib.dump(ours, open(form.name, 'wb'), fmt=form))"},
        {.folder = folder.path()});
    EXPECT_EQ(python.out,
        R"({'<key> & \xf6': 1, 'big': 9223372036854775807, 'data': b'\x00\xff', )"
        R"('date': datetime.datetime(2026, 3, 14, 12, 0, 30), 'list': [1, [], {}, 'a', ''], )"
        R"('no': False, 'real': -0.1, 'small': -9223372036854775808, )"
        R"('text': '\xe4 <&> "\'\n\t\U0001f600', 'yes': True})");
    for (const char* name : {"file", "FMT_XML", "FMT_BINARY"})
        EXPECT_EQ(dictionaryWithContentsOfFile(folder / name), values) << name;
}

TEST(PropertyList, refusesWhatIsNoneOrCouldHarm)
{
    std::string deep = "<plist>";
    for (int level = 0; level < 100000; ++level)
        deep += "<array>";
    // One list of one byte's references, which holds "true", or itself.
    const std::string list = "bplist00\xa1\1\x09\x08\x0a\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\2"s
        + std::string(15, '\0') + "\x0b";
    std::string ofItself = list;
    ofItself[9] = '\0';
    EXPECT_EQ(valueOf(list), Value(Array{true}));
    for (const std::string& each : {""s, "a = 1"s, std::string(1000, '\0'), "bplist00"s, ofItself,
             deep, "<plist><dict><true/></dict></plist>"s, "<plist><x/></plist>"s,
             "<plist><string>" + std::string(mostBytes, 'a') + "</string></plist>"})
        EXPECT_FALSE(valueOf(each)) << each.substr(0, 80);
    const TestFolder folder;
    makeFifo(folder / "fifo"); // must not be waited for
    writeFile(folder / "list", list);
    for (const char* name : {"fifo", "list", "missing"})
        EXPECT_FALSE(dictionaryWithContentsOfFile(folder / name)) << name;
}

TEST(TextNumber, readsAsThePlatformDoes)
{
    const std::pair<const char*, int> cases[] = {{"", 0}, {" \n-3.5e1 ", -3}, {"+-8", 0},
        {"0x10", 0}, {"007x", 7}, {"99999999999", std::numeric_limits<int>::max()}};
    for (const auto& [text, number] : cases)
        EXPECT_EQ(TextNumber::intValue(text), number) << text;
    EXPECT_EQ(TextNumber::doubleValue(" -3.5e1 x"), -35);
    EXPECT_EQ(TextNumber::doubleValue("nan"), 0);
    EXPECT_EQ(TextNumber::truncated(1e30), largest);
}
