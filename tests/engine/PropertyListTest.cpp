// Property lists: both ways between our reader and writer and Python's, and what is refused.

#include "platform/base/bundle/PropertyList.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/base/bundle/TextNumber.h"
#include "tests/support/Files.h"
#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <limits>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace support;
using namespace std::chrono_literals;
using PropertyList::Array;
using PropertyList::Data;
using PropertyList::Date;
using PropertyList::Dictionary;
using PropertyList::Value;

namespace
{

// The same values in Python's words and in ours.
constexpr const char* inPython = R"({
    "yes": True, "no": False, "big": 2**63 - 1, "small": -2**63, "real": -0.1, "tiny": 1e-300,
    "text": "\u00e4 <&> \"'\n\t\U0001f600", "empty": "", "data": bytes(range(256)), "none": b"",
    "date": datetime.datetime(2026, 3, 14, 12, 0, 30), "old": datetime.datetime(1970, 1, 1),
    "list": [1, [], {}, "a"], "nested": {"a": {"b": ["c"]}}, "<key> & \u00f6": 1})";

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

RunResult python(const std::string& program, const std::filesystem::path& file)
{
    return run({"python3", "-c", "import plistlib, datetime, sys\n" + program, file});
}

std::string repeated(const std::string& text, int count)
{
    std::string all;
    for (int done = 0; done < count; ++done)
        all += text;
    return all;
}

std::string xml(const std::string& root)
{
    return "<plist version=\"1.0\">" + root + "</plist>";
}

std::string bigEndian(std::uint64_t number, int width)
{
    std::string bytes;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift);
    return bytes;
}

// A binary list of these objects, whose references take two bytes; the first is the root.
std::string binary(const std::vector<std::string>& objects)
{
    std::string bytes = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += bigEndian(bytes.size(), 4);
        bytes += object;
    }
    const auto tableAt = bytes.size();
    return bytes + table + std::string(6, '\0') + "\4\2" + bigEndian(objects.size(), 8)
        + bigEndian(0, 8) + bigEndian(tableAt, 8);
}

std::string arrayObject(const std::vector<unsigned>& references)
{
    std::string object = "\xaf\x11" + bigEndian(references.size(), 2);
    for (const unsigned reference : references)
        object += bigEndian(reference, 2);
    return object;
}

// Lists that each hold the next one so many times.
std::string chain(unsigned length, unsigned times)
{
    std::vector<std::string> objects;
    for (unsigned index = 1; index <= length; ++index)
        objects.push_back(arrayObject(std::vector<unsigned>(times, index)));
    objects.emplace_back("\x09");
    return binary(objects);
}

std::string hugeTextOftenReferred()
{
    const std::string text = "\x5f\x12" + bigEndian(500000, 4) + std::string(500000, 'a');
    return binary({arrayObject(std::vector<unsigned>(1000, 1)), text});
}

} // namespace

TEST(PropertyList, readsWhatPythonWrites)
{
    const TestFolder folder;
    for (const std::string format : {"FMT_XML", "FMT_BINARY"}) {
        const auto file = folder / format;
        const auto made = python("plistlib.dump(" + std::string(inPython)
                + ", open(sys.argv[1], 'wb'), fmt=plistlib." + format + ")",
            file);
        ASSERT_EQ(made.status, 0) << made.err;
        EXPECT_EQ(PropertyList::dictionaryWithContentsOfFile(file), inOurs()) << format;
    }
}

TEST(PropertyList, pythonReadsWhatWeWrite)
{
    const TestFolder folder;
    ASSERT_TRUE(PropertyList::writeToFile(inOurs(), folder / "a.plist"));
    const auto result = python(
        "ours = plistlib.load(open(sys.argv[1], 'rb'))\nexpected = " + std::string(inPython)
            + "\nassert ours == expected, ours\n"
              "assert [type(ours[k]) for k in ours] == [type(expected[k]) for k in ours]",
        folder / "a.plist");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"a.plist"});
}

TEST(PropertyList, writingKeepsPermissionsAndLinksAndChangesNothingWhenItFails)
{
    const TestFolder folder;
    const auto file = folder / "a.plist";
    writeFile(file, "old");
    ::chmod(file.c_str(), 0640);
    std::filesystem::create_symlink("a.plist", folder / "link");

    const Value unwritable[] = {std::string("a\0b", 3), "\x01", "\r", "\xff", "\xed\xa0\x80",
        "\xc0\xaf", "\xf4\x90\x80\x80", std::numeric_limits<double>::quiet_NaN(), Date(100000000h)};
    for (const Value& value : unwritable)
        EXPECT_FALSE(PropertyList::writeToFile({{"a", Array{value}}}, file)) << value.index();
    EXPECT_FALSE(PropertyList::writeToFile({{"\x02", 1}}, file));
    EXPECT_FALSE(PropertyList::writeToFile({}, folder / "missing/a.plist"));
    EXPECT_EQ(readFile(file), "old");

    EXPECT_TRUE(PropertyList::writeToFile({{"a", "new"}}, folder / "link"));
    EXPECT_EQ(PropertyList::dictionaryWithContentsOfFile(file), (Dictionary{{"a", "new"}}));
    struct stat status = {};
    ASSERT_EQ(::lstat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0640);
    EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"a.plist", "link"}));
}

TEST(PropertyList, refusesWhatIsNoneOrCouldHarm)
{
    const struct {
        const char* name;
        std::string bytes;
    } cases[] = {{"empty", ""}, {"text", "CheckAtStartup = 1"}, {"zeros", std::string(1000, '\0')},
        {"cut off", "<plist><dict><key>a</key>"}, {"value alone", xml("<dict><true/></dict>")},
        {"unknown", xml("<dict><x/></dict>")}, {"only the header", "bplist00"},
        {"binary of zeros", "bplist00" + std::string(32, '\0')}, {"root out of range", binary({})},
        {"list of itself", binary({arrayObject({0})})},
        {"reference out of range", binary({arrayObject({7})})},
        {"count out of range", binary({"\xaf\x13" + std::string(8, '\xff')})},
        {"deep", xml(repeated("<array>", 100) + repeated("</array>", 100))},
        {"very deep", xml(repeated("<array>", 100000))}, {"deep binary", chain(4000, 1)},
        {"bomb of lists", chain(20, 50)}, {"bomb of a text", hugeTextOftenReferred()},
        {"large", xml("<string>" + std::string(PropertyList::mostBytes, 'a') + "</string>")},
        {"zero in a key",
            binary(
                {"\xd1" + bigEndian(1, 2) + bigEndian(2, 2), std::string("\x52\0a", 3), "\x09"})},
        {"object id", binary({std::string("\x80\0", 2)})}};
    for (const auto& each : cases)
        EXPECT_FALSE(PropertyList::valueOf(each.bytes)) << each.name;
    EXPECT_EQ(PropertyList::valueOf(chain(1, 3)), Value(Array{true, true, true}));

    const TestFolder folder;
    writeFile(folder / "list", xml("<array/>"));
    writeFile(folder / "large", std::string(PropertyList::mostBytes + 1, ' ') + xml("<dict/>"));
    makeFifo(folder / "fifo");
    for (const char* name : {"list", "large", "fifo", "missing", ""})
        EXPECT_FALSE(PropertyList::dictionaryWithContentsOfFile(folder / name)) << name;
}

// Each byte of a good list damaged in turn, and each length of it: whatever is read must be read
// without harm, which the sanitizers watch.
TEST(PropertyList, survivesDamageOfEveryByte)
{
    const TestFolder folder;
    const auto file = folder / "binary";
    const auto made = python("plistlib.dump(" + std::string(inPython)
            + ", open(sys.argv[1], 'wb'), fmt=plistlib.FMT_BINARY)",
        file);
    ASSERT_EQ(made.status, 0) << made.err;
    int refused = 0;
    for (const std::string& good : {readFile(file), *PropertyList::xmlOf(inOurs())}) {
        for (std::size_t at = 0; at < good.size(); ++at) {
            refused += PropertyList::valueOf(good.substr(0, at)) ? 0 : 1;
            for (const char byte : {'\0', '\x7f', '\xff', '<', '\xd1'}) {
                std::string damaged = good;
                damaged[at] = byte;
                refused += PropertyList::valueOf(damaged) ? 0 : 1;
            }
        }
    }
    EXPECT_GT(refused, 1000);
}

TEST(Bundle, tellsWhatItsInformationFileHolds)
{
    const TestFolder folder;
    EXPECT_EQ(Bundle(folder / "none").infoDictionary(), Dictionary());
    writeFile(folder / "broken/Contents/Info.plist", "<plist>");
    EXPECT_EQ(Bundle(folder / "broken").infoDictionary(), Dictionary());

    const Bundle ours(std::filesystem::path(PARCELO_TOOLS_DIR).parent_path().parent_path());
    EXPECT_EQ(ours.objectForInfoDictionaryKey("CFBundleName"), Value("Parcelo"));
    EXPECT_EQ(ours.objectForInfoDictionaryKey("CFBundleIdentifier"), Value("org.parcelo.Parcelo"));
    EXPECT_EQ(ours.objectForInfoDictionaryKey("LSUIElement"), Value(0));
    EXPECT_FALSE(ours.objectForInfoDictionaryKey("Missing"));
    const auto version = ours.objectForInfoDictionaryKey("CFBundleVersion");
    const auto said = run({PARCELO_PROGRAM, "--version"}).out;
    EXPECT_EQ("parcelo " + std::get<std::string>(version.value()) + "\n", said);
}

TEST(Bundle, readsItsInformationOnceForAllCopies)
{
    const TestFolder folder;
    const auto file = folder / "Contents/Info.plist";
    writeFile(file, xml("<dict><key>a</key><true/></dict>"));
    const Bundle bundle(folder.path());
    const Bundle copy = bundle;
    EXPECT_EQ(bundle.infoDictionary(), (Dictionary{{"a", true}}));
    writeFile(file, xml("<dict/>"));
    EXPECT_EQ(&copy.infoDictionary(), &bundle.infoDictionary());
    EXPECT_EQ(copy.bundlePath(), folder.path());
}

TEST(TextNumber, readsAsThePlatformDoes)
{
    constexpr auto most = std::numeric_limits<int>::max();
    constexpr auto least = std::numeric_limits<int>::min();
    const struct {
        const char* text;
        int number;
        double real;
        bool isTrue;
    } cases[] = {{"", 0, 0, false}, {"YES", 0, 0, true}, {"yes", 0, 0, true}, {"true", 0, 0, true},
        {"No", 0, 0, false}, {"false", 0, 0, false}, {"on", 0, 0, false}, {"1", 1, 1, true},
        {"0", 0, 0, false}, {"007x", 7, 7, true}, {" \n-3.5e1 ", -3, -35, true}, {"+8", 8, 8, true},
        {"+-8", 0, 0, false}, {"-", 0, 0, false}, {"0x10", 0, 0, false}, {".5", 0, .5, false},
        {"1,5", 1, 1, true}, {"99999999999", most, 99999999999., true},
        {"-99999999999", least, -99999999999., true}, {"nan", 0, 0, false}, {"inf", 0, 0, false}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        EXPECT_EQ(TextNumber::intValue(each.text), each.number);
        EXPECT_EQ(TextNumber::doubleValue(each.text), each.real);
        EXPECT_EQ(TextNumber::boolValue(each.text), each.isTrue);
    }
    EXPECT_EQ(TextNumber::integerValue("99999999999"), 99999999999);
    EXPECT_EQ(TextNumber::truncated(-2.9), -2);
    EXPECT_EQ(TextNumber::truncated(1e30), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(TextNumber::truncated(std::numeric_limits<double>::quiet_NaN()), 0);
}
