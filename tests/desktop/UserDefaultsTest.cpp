// The user's settings: what is stored comes back, by other instances and processes as well.

#include "platform/desktop/settings/UserDefaults.h"

#include "tests/support/Files.h"
#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <QSettings>

#include <atomic>
#include <limits>
#include <thread>

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
        _copy = std::make_unique<TestFolder>();
        if (std::filesystem::exists(file))
            std::filesystem::copy_file(file, *_copy / "copy.conf");
        _again = std::make_unique<UserDefaults>(*_copy / "copy.conf");
        return *_again;
    }

    const TestFolder folder;
    const std::filesystem::path file = folder / "new/parcelo/parcelo.conf";
    UserDefaults defaults{file};

private:
    std::unique_ptr<TestFolder> _copy;
    std::unique_ptr<UserDefaults> _again;
};

} // namespace

TEST_F(UserDefaultsTest, whatIsStoredComesBack)
{
    const QByteArray allBytes = [] {
        QByteArray bytes;
        for (int byte = 0; byte < 256; ++byte)
            bytes += static_cast<char>(byte);
        return bytes;
    }();
    const QVariant exact[] = {QStringLiteral(""), QStringLiteral("@Invalid()"),
        QStringLiteral("a, \"b\"; \\ \n[x]\0é😀"), QStringLiteral("["), allBytes, QByteArray("")};
    const QStringList lists[] = {{}, {QString()}, {QStringLiteral("~/Desktop")},
        {QStringLiteral("["), QStringLiteral("]")},
        {QStringLiteral("a, b"), QStringLiteral("@c"), QStringLiteral("%41")}};
    for (const QVariant& object : exact) {
        defaults.setObject(object, QStringLiteral("key"));
        EXPECT_EQ(defaults.objectForKey(QStringLiteral("key")), object);
        EXPECT_EQ(readAgain().objectForKey(QStringLiteral("key")), object);
    }
    for (const QStringList& list : lists) {
        defaults.setObject(list, QStringLiteral("key"));
        EXPECT_EQ(defaults.stringArrayForKey(QStringLiteral("key")), list);
        EXPECT_EQ(readAgain().stringArrayForKey(QStringLiteral("key")), list);
        EXPECT_FALSE(readAgain().stringForKey(QStringLiteral("key")));
    }
    defaults.setObject(QVariantList{0.1, 5}, QStringLiteral("key"));
    EXPECT_EQ(readAgain().arrayForKey(QStringLiteral("key")).value()[0].toDouble(), 0.1);
    defaults.removeObjectForKey(QStringLiteral("key"));
    EXPECT_FALSE(readAgain().objectForKey(QStringLiteral("key")).isValid());
}

TEST_F(UserDefaultsTest, numbersAndBooleansReadAsThePlatformReadsThem)
{
    const struct {
        QVariant object;
        qint64 number;
        bool isTrue;
        std::optional<QString> text;
    } cases[] = {{{}, 0, false, {}}, {true, 1, true, QStringLiteral("true")},
        {false, 0, false, QStringLiteral("false")}, {-7, -7, true, QStringLiteral("-7")},
        {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min(), true,
            QStringLiteral("-9223372036854775808")},
        {-2.9, -2, true, QStringLiteral("-2.9")},
        {QStringLiteral("YES"), 0, true, QStringLiteral("YES")},
        {QStringLiteral(" 12 files"), 12, true, QStringLiteral(" 12 files")},
        {QStringLiteral("NO"), 0, false, QStringLiteral("NO")}, {QByteArray("1"), 0, false, {}},
        {QStringList{QStringLiteral("1")}, 0, false, {}}};
    const auto key = QStringLiteral("key");
    for (const auto& each : cases) {
        SCOPED_TRACE(each.object.toString().toStdString());
        defaults.setObject(each.object, key);
        defaults.registerDefaults({{QStringLiteral("fallback"), each.object}});
        for (const auto& [read, from] : {std::pair{&defaults, key}, std::pair{&readAgain(), key},
                 std::pair{&defaults, QStringLiteral("fallback")}}) {
            EXPECT_EQ(read->integerForKey(from), each.number);
            EXPECT_EQ(read->boolForKey(from), each.isTrue);
            EXPECT_EQ(read->stringForKey(from), each.text);
        }
    }
}

TEST_F(UserDefaultsTest, fallbacksAreReadAndNeverWritten)
{
    const auto key = QStringLiteral("ArchiveType");
    defaults.registerDefaults({{key, 1}, {QStringLiteral("Destinations"), QVariantList()}});
    EXPECT_EQ(defaults.integerForKey(key), 1);
    EXPECT_EQ(defaults.stringArrayForKey(QStringLiteral("Destinations")), QStringList());
    EXPECT_FALSE(defaults.arrayForKey(key));
    defaults.setBool(true, QStringLiteral("AutoQuit"));
    EXPECT_EQ(readFile(file), "[General]\nAutoQuit=true\n");
    defaults.setInteger(3, key);
    EXPECT_EQ(defaults.integerForKey(key), 3);
    defaults.setObject({}, key);
    EXPECT_EQ(defaults.integerForKey(key), 1);
}

TEST_F(UserDefaultsTest, tellsOfEachChangeOnce)
{
    QStringList told;
    QObject::connect(
        &defaults, &UserDefaults::didChange, [&](const QString& key) { told.append(key); });
    defaults.registerDefaults({{QStringLiteral("a"), 1}});
    defaults.setInteger(2, QStringLiteral("a"));
    defaults.setInteger(2, QStringLiteral("a"));
    defaults.setObject(QStringList(), QStringLiteral("b"));
    writeFile(file, "[General]\na=2\nc=x\n");
    defaults.synchronize();
    defaults.removeObjectForKey(QStringLiteral("a"));
    EXPECT_EQ(told.join(QLatin1Char(' ')), QStringLiteral("a a b b c a"));
}

TEST_F(UserDefaultsTest, aFileOfAnyKindDoesNoHarm)
{
    const struct {
        const char* name;
        std::function<void(const std::filesystem::path&)> make;
    } cases[] = {{"folder", [](const auto& path) { std::filesystem::create_directories(path); }},
        {"folder that is a file", [](const auto& path) { writeFile(path.parent_path(), ""); }},
        {"random", [](const auto& path) { writeFile(path, randomBytes(100000, 1)); }},
        {"garbage",
            [](const auto& path) { writeFile(path, "[[\n=%%\nkey\n\\x\n@Variant(\\0\\0"); }},
        {"bad variant",
            [](const auto& path) { writeFile(path, "[General]\nkey=@Variant(\\x7f)"); }}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        const TestFolder own;
        each.make(own / "a/parcelo.conf");
        UserDefaults broken(own / "a/parcelo.conf");
        broken.registerDefaults({{QStringLiteral("key"), 5}});
        EXPECT_EQ(broken.integerForKey(QStringLiteral("key")), 5);
        broken.setInteger(6, QStringLiteral("key"));
        broken.synchronize();
        EXPECT_EQ(broken.integerForKey(QStringLiteral("key")), 6);
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
        defaults.setInteger(round % 10, key);
        defaults.setInteger(round, key + QString::number(round % 20));
    }
}

TEST_F(UserDefaultsTest, processesDoNotLoseEachOthersKeys)
{
    const QStringList keys{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
    std::vector<std::unique_ptr<RunningProgram>> writers;
    for (const QString& key : keys) {
        const RunOptions options{.environment = {{"DEFAULTS_FILE=" + file.native(),
                                     "DEFAULTS_KEY=" + key.toStdString(), "PATH=/usr/bin:/bin"}}};
        writers.push_back(std::make_unique<RunningProgram>(
            std::vector<std::string>{"/proc/self/exe", "--gtest_also_run_disabled_tests",
                "--gtest_filter=UserDefaultsProcess.DISABLED_writer"},
            options));
    }
    for (const auto& writer : writers) {
        const RunResult result = writer->wait();
        EXPECT_EQ(result.status, 0) << result.out << result.err;
    }
    for (const QString& key : keys) {
        EXPECT_EQ(readAgain().integerForKey(key), 9);
        for (int round = 20; round < 40; ++round)
            EXPECT_EQ(readAgain().integerForKey(key + QString::number(round % 20)), round);
    }
    EXPECT_EQ(namesIn(file.parent_path()), std::vector<std::string>{"parcelo.conf"});
}

TEST_F(UserDefaultsTest, threadsReadWhileTheMainThreadWrites)
{
    std::atomic<bool> isOver = false;
    const auto key = QStringLiteral("CompressionLevel");
    std::vector<std::jthread> readers;
    for (int count = 0; count < 2; ++count)
        readers.emplace_back([&] {
            qint64 last = 0;
            while (!isOver) {
                const qint64 level = defaults.integerForKey(key);
                EXPECT_GE(level, last);
                last = level;
            }
        });
    for (int level = 1; level <= 30; ++level)
        defaults.setInteger(level, key);
    isOver = true;
}

TEST(UserDefaults, theStandardOnesAreTheUsersUntilTheyAreReplaced)
{
    const TestFolder folder;
    UserDefaults::standardUserDefaults().setInteger(1, QStringLiteral("a"));
    EXPECT_EQ(
        readFile(std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "parcelo/parcelo.conf"),
        "[General]\na=1\n");
    UserDefaults::setStandardUserDefaults(std::make_unique<UserDefaults>(folder / "b.conf"));
    EXPECT_EQ(UserDefaults::standardUserDefaults().integerForKey(QStringLiteral("a")), 0);
    UserDefaults::setStandardUserDefaults(nullptr);
    EXPECT_EQ(UserDefaults::standardUserDefaults().integerForKey(QStringLiteral("a")), 1);
}
