// Property lists: both ways between our reader and writer and Python's, and what is refused.

#include "platform/base/bundle/PropertyList.h"

#include "platform/base/bundle/Bundle.h"
#include "system/TextNumber.h"
#include "tests/support/Files.h"
#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <limits>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace support;
using namespace std::chrono_literals;
using namespace PropertyList;

namespace
{

// The same values in Python's words and in ours.
constexpr const char* inPython = R"(import plistlib, datetime, sys
values = {
    "yes": True, "no": False, "big": 2**63 - 1, "small": -2**63, "real": -0.1, "tiny": 1e-300,
    "text": "\u00e4 <&> \"'\n\t\U0001f600", "empty": "", "data": bytes(range(256)), "none": b"",
    "date": datetime.datetime(2026, 3, 14, 12, 0, 30), "old": datetime.datetime(1970, 1, 1),
    "list": [1, [], {}, "a"], "nested": {"a": {"b": ["c"]}}, "<key> & \u00f6": 1}
)";

Dictionary inOurs()
{
    std::string allBytes;
    for (int byte = 0; byte < 256; ++byte)
        allBytes += static_cast<char>(byte);
    using Limits = std::numeric_limits<std::int64_t>;
    return {{"yes", true}, {"no", false}, {"big", Limits::max()}, {"small", Limits::min()},
        {"real", -0.1}, {"tiny", 1e-300}, {"text", "ä <&> \"'\n\t😀"}, {"empty", ""},
        {"data", Data{allBytes}}, {"none", Data{}}, {"date", Date(1773489630s)}, {"old", Date(0s)},
        {"list", Array{1, Array{}, Dictionary{}, "a"}},
        {"nested", Dictionary{{"a", Dictionary{{"b", Array{"c"}}}}}}, {"<key> & ö", 1}};
}

void runPython(const std::string& program, const std::filesystem::path& folder)
{
    const auto result = run({"python3", "-c", inPython + program, folder}, {.folder = folder});
    EXPECT_EQ(result.status, 0) << result.err;
}

} // namespace

TEST(PropertyList, goesBothWaysBetweenPythonAndUs)
{
    const TestFolder folder;
    ASSERT_TRUE(writeToFile(inOurs(), folder / "ours"));
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"ours"});
    runPython(R"(ours = plistlib.load(open('ours', 'rb'))
assert ours == values, ours
assert [type(ours[k]) for k in ours] == [type(values[k]) for k in ours]
plistlib.dump(values, open('xml', 'wb'), fmt=plistlib.FMT_XML)
plistlib.dump(values, open('binary', 'wb'), fmt=plistlib.FMT_BINARY))",
        folder.path());
    for (const char* format : {"xml", "binary"})
        EXPECT_EQ(dictionaryWithContentsOfFile(folder / format), inOurs()) << format;
}

TEST(PropertyList, writingKeepsPermissionsAndLinksAndChangesNothingWhenItFails)
{
    const TestFolder folder;
    const auto file = folder / "a.plist";
    writeFile(file, "old");
    ::chmod(file.c_str(), 0640);
    std::filesystem::create_symlink("a.plist", folder / "link");
    const Value unwritable[] = {std::string("a\0b", 3), "\x01", "\r", "\x7f", "\xff",
        "\xed\xa0\x80", "\xef\xbf\xbf", std::numeric_limits<double>::quiet_NaN(), Date(100000000h)};
    for (const Value& value : unwritable)
        EXPECT_FALSE(writeToFile({{"a", Array{value}}}, file)) << value.index();
    EXPECT_FALSE(writeToFile({{"\x02", 1}}, file));
    EXPECT_FALSE(writeToFile({}, folder / "missing/a.plist"));
    EXPECT_EQ(readFile(file), "old");

    EXPECT_TRUE(writeToFile({{"a", "new"}}, folder / "link"));
    EXPECT_EQ(dictionaryWithContentsOfFile(file), (Dictionary{{"a", "new"}}));
    struct stat status = {};
    ASSERT_EQ(::lstat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0640);
    EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"a.plist", "link"}));
}

TEST(PropertyList, refusesWhatIsNoneOrCouldHarm)
{
    const TestFolder folder;
    makeFifo(folder / "fifo");
    runPython(R"(def number(value, width): return value.to_bytes(width, 'big')
def binary(*objects): # the first is the root
    table, body = b'', b'bplist00'
    for each in objects:
        table += number(len(body), 4)
        body += each
    return body + table + bytes(6) + b'\4\2' + number(len(objects), 8) + bytes(8) + number(len(body), 8)
def array(*references):
    return b'\xaf\x11' + number(len(references), 2) + b''.join(number(r, 2) for r in references)
def chain(length, times): # lists that each hold the next one so many times
    return binary(*[array(*[i] * times) for i in range(1, length + 1)], b'\x09')
def xml(root): return b'<plist version="1.0">' + root + b'</plist>'
text = b'\x5f\x12' + number(500000, 4) + b'a' * 500000
for name, content in {'good.binary': chain(1, 3), 'good.xml': xml(b'<array/>'), 'empty': b'',
    'text': b'a = 1', 'zeros': bytes(1000), 'cut off': b'<plist><dict><key>a</key>',
    'value alone': xml(b'<dict><true/></dict>'), 'unknown': xml(b'<dict><x/></dict>'),
    'header': b'bplist00', 'binary zeros': b'bplist00' + bytes(32), 'no root': binary(),
    'list of itself': binary(array(0)), 'reference out of range': binary(array(7)),
    'count out of range': binary(b'\xaf\x13' + b'\xff' * 8),
    'deep': xml(b'<array>' * 100 + b'</array>' * 100), 'very deep': xml(b'<array>' * 100000),
    'deep binary': chain(4000, 1), 'bomb of lists': chain(20, 50),
    'bomb of a text': binary(array(*[1] * 1000), text),
    'large': xml(b'<string>' + b'a' * 2**20 + b'</string>'), 'large file': b' ' * 2**20 + xml(b'<dict/>'),
    'zero in a key': binary(b'\xd1\0\1\0\2', b'\x52\0a', b'\x09'),
    'object id': binary(b'\x80\0')}.items():
    open(name, 'wb').write(content))",
        folder.path());
    EXPECT_EQ(valueOf(readFile(folder / "good.binary")), Value(Array{true, true, true}));
    EXPECT_EQ(valueOf(readFile(folder / "good.xml")), Value(Array{}));
    EXPECT_FALSE(dictionaryWithContentsOfFile(folder / "missing"));
    for (const std::string& name : namesIn(folder.path())) {
        EXPECT_FALSE(dictionaryWithContentsOfFile(folder / name)) << name;
        if (name != "fifo" && !name.starts_with("good")) {
            EXPECT_FALSE(valueOf(readFile(folder / name))) << name;
        }
    }
}

TEST(Bundle, tellsWhatItsInformationFileHolds)
{
    const Bundle ours(std::filesystem::path(PARCELO_TOOLS_DIR).parent_path().parent_path());
    EXPECT_EQ(ours.objectForInfoDictionaryKey("CFBundleIdentifier"), Value("org.parcelo.Parcelo"));
    EXPECT_EQ(ours.objectForInfoDictionaryKey("LSUIElement"), Value(0));
    EXPECT_FALSE(ours.objectForInfoDictionaryKey("Missing"));
    EXPECT_EQ("parcelo " + ours.stringForInfoDictionaryKey("CFBundleVersion") + "\n",
        run({PARCELO_PROGRAM, "--version"}).out);
}

TEST(TextNumber, readsAsThePlatformDoes)
{
    constexpr auto most = std::numeric_limits<int>::max();
    const struct {
        const char* text;
        int number;
        double real;
        bool isTrue;
    } cases[] = {{"", 0, 0, false}, {"YES", 0, 0, true}, {"true", 0, 0, true}, {"No", 0, 0, false},
        {"on", 0, 0, false}, {"0", 0, 0, false}, {"007x", 7, 7, true}, {"+8", 8, 8, true},
        {" \n-3.5e1 ", -3, -35, true}, {"+-8", 0, 0, false}, {"-", 0, 0, false},
        {"0x10", 0, 0, false}, {".5", 0, .5, false}, {"1,5", 1, 1, true},
        {"99999999999", most, 99999999999., true}, {"-99999999999", -most - 1, -99999999999., true},
        {"nan", 0, 0, false}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        EXPECT_EQ(TextNumber::intValue(each.text), each.number);
        EXPECT_EQ(TextNumber::doubleValue(each.text), each.real);
        EXPECT_EQ(TextNumber::boolValue(each.text), each.isTrue);
    }
    EXPECT_EQ(TextNumber::truncated(-2.9), -2);
    EXPECT_EQ(TextNumber::truncated(1e30), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(TextNumber::truncated(std::numeric_limits<double>::quiet_NaN()), 0);
}
