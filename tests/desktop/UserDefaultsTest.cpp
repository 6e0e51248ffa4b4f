// The user's settings: what is stored comes back, by other instances and processes as well.

#include "platform/desktop/settings/UserDefaults.h"

#include "tests/support/Files.h"
#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <limits>
#include <numeric>

#include <gtest/gtest.h>

using namespace support;

namespace
{

class UserDefaultsTest : public testing::Test
{
protected:
    // As the next start of the program reads them, whatever Qt still remembers of the file.
    UserDefaults& readAgain()
    {
        const auto copy = folder / std::to_string(++_copies);
        if (std::filesystem::exists(file))
            std::filesystem::copy_file(file, copy);
        _again = std::make_unique<UserDefaults>(copy);
        return *_again;
    }

    const TestFolder folder;
    const std::filesystem::path file = folder / "new/parcelo/parcelo.conf";
    UserDefaults defaults{file};

private:
    std::unique_ptr<UserDefaults> _again;
    int _copies = 0;
};

} // namespace

TEST_F(UserDefaultsTest, whatIsStoredComesBack)
{
    QByteArray everyByte(256, '\0');
    std::iota(everyByte.begin(), everyByte.end(), '\0');
    for (const QVariant& object :
        {QVariant(""), QVariant("@Invalid()"), QVariant(QStringLiteral("a, \"b\"; \\ \n[x]\0é😀")),
            QVariant("["), QVariant(everyByte), QVariant(QByteArray(""))}) {
        defaults.setObject(object, "key");
        EXPECT_EQ(defaults.objectForKey("key"), object);
        EXPECT_EQ(readAgain().objectForKey("key"), object);
    }
    for (const QStringList& list :
        {QStringList(), {""}, {"~/Desktop"}, {"[", "]"}, {"a, b", "@c", "%41"}}) {
        defaults.setObject(list, "key");
        EXPECT_EQ(defaults.stringArrayForKey("key"), list);
        EXPECT_EQ(readAgain().stringArrayForKey("key"), list);
        EXPECT_FALSE(readAgain().stringForKey("key"));
    }
    defaults.setObject(QVariantList{0.1, 5}, "key");
    EXPECT_EQ(readAgain().arrayForKey("key").value()[0].toDouble(), 0.1);
}

TEST_F(UserDefaultsTest, numbersAndBooleansReadAsThePlatformReadsThem)
{
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    const struct {
        QVariant object;
        qint64 number;
        bool isTrue;
        std::optional<QString> text;
    } cases[] = {{{}, 0, false, {}}, {true, 1, true, "true"}, {false, 0, false, "false"},
        {lowest, lowest, true, "-9223372036854775808"}, {-2.9, -2, true, "-2.9"},
        {"YES", 0, true, "YES"}, {" 12 files", 12, true, " 12 files"},
        {QByteArray("1"), 0, false, {}}, {QStringList{"1"}, 0, false, {}}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.object.toString().toStdString());
        defaults.setObject(each.object, "key");
        defaults.registerDefaults({{"fallback", each.object}});
        for (const auto& [read, from] : {std::pair{&defaults, "key"},
                 std::pair{&readAgain(), "key"}, std::pair{&defaults, "fallback"}}) {
            EXPECT_EQ(read->integerForKey(from), each.number);
            EXPECT_EQ(read->boolForKey(from), each.isTrue);
            EXPECT_EQ(read->stringForKey(from), each.text);
        }
    }
}

TEST_F(UserDefaultsTest, tellsOfEachChangeOnceAndWritesNoFallbacks)
{
    QStringList told;
    QObject::connect(
        &defaults, &UserDefaults::didChange, [&](const QString& key) { told.append(key); });
    defaults.registerDefaults({{"a", 1}, {"none", QVariantList()}});
    EXPECT_EQ(defaults.stringArrayForKey("none"), QStringList());
    defaults.setBool(true, "b");
    EXPECT_EQ(readFile(file), "[General]\nb=true\n");
    defaults.setObjects({{"a", 2}, {"b", QVariant()}});
    defaults.setObjects({{"a", 2}});
    writeFile(file, "[General]\na=2\nc=x\n");
    defaults.synchronize();
    defaults.setObject({}, "a");
    EXPECT_EQ(defaults.integerForKey("a"), 1);
    EXPECT_EQ(told.join(' '), "a none b a b c a");
}

TEST_F(UserDefaultsTest, aFileOfAnyKindDoesNoHarm)
{
    using Path = const std::filesystem::path&;
    const std::function<void(Path)> makers[] = {
        [](Path path) { std::filesystem::create_directories(path); },
        [](Path path) { writeFile(path.parent_path(), ""); }, // a file where its folder would be
        [](Path path) { writeFile(path, randomBytes(100000, 1)); },
        [](Path path) { writeFile(path, "[[\n=%%\nkey\n\\x\n@Variant(\\0\\0"); },
        [](Path path) { writeFile(path, "[General]\nkey=@Variant(\\x7f)"); }};
    for (const auto& make : makers) {
        SCOPED_TRACE(&make - makers);
        const TestFolder own;
        make(own / "a/parcelo.conf");
        UserDefaults broken(own / "a/parcelo.conf");
        broken.registerDefaults({{"key", 5}});
        EXPECT_EQ(broken.integerForKey("key"), 5);
        broken.setInteger(6, "key");
        broken.synchronize();
        EXPECT_EQ(broken.integerForKey("key"), 6);
    }
}

// The other side of the next test, run in processes of its own: sets a key of its own to one digit
// after another, which keeps the size of the file.
TEST(UserDefaultsProcess, DISABLED_writer)
{
    UserDefaults defaults(std::getenv("DEFAULTS_FILE"));
    const QString key = qEnvironmentVariable("DEFAULTS_KEY");
    for (int round = 0; round < 40; ++round) {
        ASSERT_EQ(defaults.integerForKey(key), round == 0 ? 0 : (round - 1) % 10) << round;
        defaults.setObjects({{key, round % 10}, {key + QString::number(round % 20), round}});
    }
}

TEST_F(UserDefaultsTest, processesDoNotLoseEachOthersKeys)
{
    std::vector<std::unique_ptr<RunningProgram>> writers;
    for (const std::string key : {"a", "b", "c"}) {
        const RunOptions options{.environment
            = {{"DEFAULTS_FILE=" + file.native(), "DEFAULTS_KEY=" + key, "PATH=/usr/bin:/bin"}}};
        writers.push_back(std::make_unique<RunningProgram>(
            std::vector<std::string>{"/proc/self/exe", "--gtest_also_run_disabled_tests",
                "--gtest_filter=UserDefaultsProcess.DISABLED_writer"},
            options));
    }
    for (const auto& writer : writers) {
        const RunResult result = writer->wait();
        EXPECT_EQ(result.status, 0) << result.out << result.err;
    }
    for (const QString key : {"a", "b", "c"}) {
        EXPECT_EQ(readAgain().integerForKey(key), 9);
        for (int round = 20; round < 40; ++round)
            EXPECT_EQ(readAgain().integerForKey(key + QString::number(round % 20)), round);
    }
    EXPECT_EQ(namesIn(file.parent_path()), std::vector<std::string>{"parcelo.conf"});
}

TEST(UserDefaults, theStandardOnesAreTheUsersUntilTheyAreReplaced)
{
    const TestFolder folder;
    UserDefaults::standardUserDefaults().setInteger(1, "a");
    EXPECT_EQ(readFile(std::getenv("XDG_CONFIG_HOME") + std::string("/parcelo/parcelo.conf")),
        "[General]\na=1\n");
    UserDefaults::setStandardUserDefaults(std::make_unique<UserDefaults>(folder / "b.conf"));
    EXPECT_EQ(UserDefaults::standardUserDefaults().integerForKey("a"), 0);
    UserDefaults::setStandardUserDefaults(nullptr);
    EXPECT_EQ(UserDefaults::standardUserDefaults().integerForKey("a"), 1);
}
