// The user's settings: what is stored comes back, by other instances and processes as well.

#include "platform/desktop/settings/UserDefaults.h"

#include "platform/desktop/settings/DefaultsController.h"
#include "tests/support/qt/QtTest.h"

#include <QSlider>

namespace
{

struct UserDefaultsTest : testing::Test {
    // As the next start of the program reads them, whatever Qt still remembers of the file.
    std::unique_ptr<UserDefaults> readAgain()
    {
        const auto copy = folder / std::to_string(++copies);
        fs::copy_file(file, copy);
        return std::make_unique<UserDefaults>(copy);
    }

    const TestFolder folder;
    const fs::path file = folder / "new/parcelo/parcelo.conf";
    UserDefaults defaults{file};
    int copies = 0;
};

} // namespace

TEST_F(UserDefaultsTest, whatIsStoredComesBack)
{
    const struct {
        QVariant object;
        qint64 number = 0;
        bool isTrue = false;
    } cases[] = {{""}, {"@Invalid()"}, {QStringLiteral("a, \"b\"; \\ \n[x]\0é😀")}, {"["},
        {QByteArray("\0\x80\xff\n%", 5)}, {QStringList()}, {QStringList{""}},
        {QStringList{"[", "a, b", "@c", "%41", "~/Desktop"}}, {"YES", 0, true},
        {" 12 files", 12, true}, {"true", 1, true},
        {"-9000000000000000000", -9'000'000'000'000'000'000, true}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.object.toString().toStdString());
        defaults.setObject(each.object, "key");
        const auto again = readAgain();
        for (const UserDefaults* read : {&defaults, again.get()}) {
            EXPECT_EQ(read->integerForKey("key"), each.number);
            EXPECT_EQ(read->boolForKey("key"), each.isTrue);
            if (each.object.userType() == QMetaType::QStringList)
                EXPECT_EQ(read->stringArrayForKey("key"), each.object.toStringList());
            else
                EXPECT_EQ(read->objectForKey("key"), each.object);
        }
    }
}

TEST_F(UserDefaultsTest, tellsOfEachChangeOnceAndWritesNoFallbacks)
{
    QString told;
    QObject::connect(&defaults, &UserDefaults::didChange, [&](const QString& key) { told += key; });
    defaults.registerDefaults({{"a", 1}});
    defaults.setBool(true, "b");
    EXPECT_EQ(readFile(file), "[General]\nb=true\n");
    defaults.setObjects({{"a", 2}, {"b", QVariant()}});
    defaults.setObjects({{"a", 2}});
    writeFile(file, "[General]\na=2\nc=x\n");
    defaults.synchronize();
    defaults.setObject({}, "a");
    EXPECT_EQ(defaults.integerForKey("a"), 1);
    EXPECT_EQ(told, "ababca");
}

TEST_F(UserDefaultsTest, aFileOfAnyKindDoesNoHarm)
{
    fs::create_directories(folder / "folder");
    writeFile(folder / "random", randomBytes(100000, 1));
    writeFile(folder / "wrong", "[[\n=%%\nkey\n\\x\n@Variant(\\0\\0");
    writeFile(folder / "other", "[General]\nkey=@Variant(\\x7f)");
    for (const char* name : {"folder", "random", "random/in a file", "wrong", "other"}) {
        UserDefaults broken(folder / name);
        broken.registerDefaults({{"key", 5}});
        EXPECT_EQ(broken.integerForKey("key"), 5) << name;
        broken.setInteger(6, "key");
        broken.synchronize();
        EXPECT_EQ(broken.integerForKey("key"), 6) << name;
    }
}

// What the program's own preferences cannot show: settings that change while they are edited.
TEST_F(UserDefaultsTest, aFormKeepsEditsAndWhatItCannotShow)
{
    defaults.setInteger(5'000'000'000, "Level");
    QWidget form;
    QSlider level(&form);
    level.setProperty("defaultsKey", "Level");
    level.setMaximum(9);
    DefaultsController controller(defaults);
    controller.bind(&form);
    controller.save();
    EXPECT_EQ(defaults.integerForKey("Level"), 5'000'000'000);
    level.setValue(3);
    controller.revert();
    defaults.setInteger(7, "Level"); // by somebody else
    EXPECT_EQ(level.value(), 7);
    level.setValue(4);
    defaults.setInteger(5, "Level");
    EXPECT_EQ(level.value(), 4);
    controller.save();
    EXPECT_EQ(defaults.integerForKey("Level"), 4);
}

// The other side of the next test, run in processes of its own: sets a key of its own to one digit
// after another, which keeps the size of the file.
TEST(UserDefaultsProcess, DISABLED_writer)
{
    UserDefaults defaults(std::getenv("DEFAULTS_FILE"));
    const QString key = qEnvironmentVariable("DEFAULTS_KEY");
    for (int round = 0; round < 40; ++round) {
        ASSERT_EQ(defaults.integerForKey(key), round == 0 ? 0 : (round - 1) % 10) << round;
        defaults.setObjects({{key, round % 10}, {key + QString::number(round), round}});
    }
}

TEST_F(UserDefaultsTest, processesDoNotLoseEachOthersKeys)
{
    const EnvironmentVariable theirs("DEFAULTS_FILE", file);
    const RunResult writers = run({"sh", "-c", R"(for key in a b c; do
        DEFAULTS_KEY=$key "$0" --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_writer &
        all="$all $!"; done; for one in $all; do wait $one || exit; done)",
        fs::read_symlink("/proc/self/exe")});
    EXPECT_EQ(writers.status, 0) << writers.out;
    for (const QString key : {"a", "b", "c"})
        for (int round = 0; round < 40; ++round)
            EXPECT_EQ(readAgain()->integerForKey(key + QString::number(round)), round);
    EXPECT_EQ(namesIn(file.parent_path()), Names{"parcelo.conf"});
}
