// Typed values in the settings and in dictionaries, with what they lose there.

#include "shared/Library/Extras/UserDefaultsExtras.h"

#include "platform/base/bundle/Bundle.h"
#include "shared/Library/Extras/DictionaryAccess.h"
#include "shared/Library/Extras/ValueCoding.h"
#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <limits>

#include <gtest/gtest.h>

namespace
{

const QString key = QStringLiteral("key");

class UserDefaultsExtrasTest : public testing::Test
{
protected:
    // As another start of the program reads them.
    const UserDefaults& readAgain()
    {
        std::filesystem::copy_file(folder / "a.conf", folder / std::to_string(++_count));
        _again = std::make_unique<UserDefaults>(folder / std::to_string(_count));
        return *_again;
    }

    const support::TestFolder folder;
    UserDefaults defaults{folder / "a.conf"};

private:
    int _count = 0;
    std::unique_ptr<UserDefaults> _again;
};

QDateTime utc(const char* text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODateWithMs);
}

// Puts the bundle that tests change back to what it was.
class FormerBundle
{
public:
    ~FormerBundle() { Bundle::setMain(_former); }

private:
    const Bundle _former = Bundle::main();
};

} // namespace

TEST_F(UserDefaultsExtrasTest, theFactoryDefaultsAreWhatTheProgramStartsWith)
{
    const FormerBundle former;
    Bundle::setMain(Bundle(std::filesystem::path(PARCELO_TOOLS_DIR).parent_path().parent_path()));
    UserDefaultsExtras::registerDefaultsWithResource(defaults, QStringLiteral("FactoryDefaults"));

    const struct {
        const char* name;
        qint64 number;
    } numbers[] = {{"CheckAtStartup", 0}, {"SelectedDestination", 0}, {"ArchiveType", 1},
        {"CompressionLevel", 6}, {"RevealWhenComplete", 1}, {"AutoQuit", 0},
        {"KeepExtensionForDefaultName", 0}, {"StayRunningOnWindowClose", 0}, {"HideAdvert", 0},
        {"SellSendora", 1}, {"AskToShareOnFacebook", 1}, {"AskToRateOnAppStore", 1}};
    for (const auto& each : numbers) {
        EXPECT_TRUE(defaults.objectForKey(QLatin1String(each.name)).isValid()) << each.name;
        EXPECT_EQ(defaults.integerForKey(QLatin1String(each.name)), each.number) << each.name;
    }
    EXPECT_EQ(defaults.stringArrayForKey(QStringLiteral("Destinations")), QStringList());
    EXPECT_FALSE(std::filesystem::exists(folder / "a.conf"));
}

TEST_F(UserDefaultsExtrasTest, aResourceThatIsMissingOrBrokenRegistersNothing)
{
    const FormerBundle former;
    Bundle::setMain(Bundle(folder / "bundle"));
    support::writeFile(folder / "bundle/Contents/Resources/Broken.plist", "<plist><dict>");
    support::writeFile(folder / "bundle/Contents/Resources/Good.plist",
        "<plist><dict><key>key</key><dict><key>a</key><array><data>AAE=</data>"
        "<date>2026-03-14T12:00:30Z</date><real>0.5</real><string>ä</string></array></dict>"
        "</dict></plist>");
    UserDefaultsExtras::registerDefaultsWithResource(defaults, QStringLiteral("Missing"));
    UserDefaultsExtras::registerDefaultsWithResource(defaults, QStringLiteral("Broken"));
    EXPECT_FALSE(defaults.objectForKey(key).isValid());
    UserDefaultsExtras::registerDefaultsWithResource(defaults, QStringLiteral("Good"));
    const QVariantList expected{
        QByteArray("\0\1", 2), utc("2026-03-14T12:00:30Z"), 0.5, QStringLiteral("ä")};
    EXPECT_EQ(defaults.objectForKey(key).toMap().value(QStringLiteral("a")).toList(), expected);
}

TEST_F(UserDefaultsExtrasTest, stringsHaveADefault)
{
    EXPECT_EQ(
        UserDefaultsExtras::stringForKey(defaults, key, QStringLiteral("x")), QStringLiteral("x"));
    defaults.setObject(QString(QLatin1String("")), key);
    EXPECT_EQ(UserDefaultsExtras::stringForKey(defaults, key, QStringLiteral("x")), QString());
}

TEST_F(UserDefaultsExtrasTest, coloursAndFontsComeBackWhole)
{
    QFont font(QStringLiteral("Some Font"), 17);
    font.setItalic(true);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1.5);
    EXPECT_FALSE(UserDefaultsExtras::colorForKey(defaults, key));
    EXPECT_FALSE(UserDefaultsExtras::fontForKey(defaults, key));
    for (const QColor& color :
        {QColor(1, 2, 3, 4), QColor::fromCmykF(.1F, .2F, .3F, .4F), QColor()}) {
        UserDefaultsExtras::setColor(defaults, color, key);
        EXPECT_EQ(UserDefaultsExtras::colorForKey(readAgain(), key), color);
    }
    EXPECT_THROW((void)UserDefaultsExtras::fontForKey(defaults, key), UnarchivingFailure);
    UserDefaultsExtras::setFont(defaults, font, key);
    EXPECT_EQ(UserDefaultsExtras::fontForKey(readAgain(), key), font);

    const QByteArray good = defaults.objectForKey(key).toByteArray();
    for (const QVariant& bad : {QVariant(QStringLiteral("red")), QVariant(QByteArray()),
             QVariant(good + '\0'), QVariant(good.chopped(1)), QVariant(QByteArray("\xff\xff\xff")),
             QVariant(good.chopped(26) + QByteArray(4, '\xfe')) /* so many families */}) {
        defaults.setObject(bad, key);
        EXPECT_THROW((void)UserDefaultsExtras::fontForKey(defaults, key), UnarchivingFailure);
        EXPECT_THROW((void)UserDefaultsExtras::colorForKey(defaults, key), UnarchivingFailure);
    }
}

TEST_F(UserDefaultsExtrasTest, pointsAreStoredInSinglePrecision)
{
    EXPECT_EQ(UserDefaultsExtras::pointForKey(defaults, key), QPointF(0, 0));
    UserDefaultsExtras::setPoint(defaults, {0.1, -1e20}, key);
    const QPointF point = UserDefaultsExtras::pointForKey(readAgain(), key);
    EXPECT_EQ(point.x(), 0.100000001490116119384765625);
    EXPECT_EQ(point.y(), static_cast<double>(-1e20F));

    QVariantMap dictionary;
    DictionaryAccess::setPoint(dictionary, {0.1, 2}, key);
    EXPECT_EQ(dictionary.value(key).toList(), (QVariantList{0.1, 2.0}));
    defaults.setObject(dictionary.value(key), key);
    EXPECT_EQ(UserDefaultsExtras::pointForKey(defaults, key), QPointF(0.1F, 2));

    defaults.setObject(QVariantList{QStringLiteral("7.5 pt"), QStringLiteral("x"), 3}, key);
    EXPECT_EQ(UserDefaultsExtras::pointForKey(defaults, key), QPointF(7.5, 0));
    for (const QVariantList& list : {QVariantList(), QVariantList{1}}) {
        defaults.setObject(list, key);
        EXPECT_THROW((void)UserDefaultsExtras::pointForKey(defaults, key), std::out_of_range);
    }
}

TEST_F(UserDefaultsExtrasTest, datesAreStoredInSecondsAndReadAsAFloat)
{
    const struct {
        const char* date;
        qint64 stored;
        const char* read; // none: nothing
    } cases[] = {{"2026-03-14T12:00:30Z", 795182430, "2026-03-14T12:00:00Z"},
        {"2026-03-14T12:00:32Z", 795182432, "2026-03-14T12:01:04Z"},
        {"2026-03-14T12:00:31Z", 795182431, "2026-03-14T12:00:00Z"},
        {"2001-01-01T00:00:01.999Z", 1, "2001-01-01T00:00:01Z"},
        {"2001-01-01T00:00:00.999Z", 0, nullptr}, {"2000-12-31T23:59:59.001Z", 0, nullptr},
        {"2000-12-31T23:59:58.500Z", -1, nullptr}, {"1970-01-01T00:00:00Z", -978307200, nullptr}};
    EXPECT_FALSE(UserDefaultsExtras::dateForKey(defaults, key));
    for (const auto& each : cases) {
        SCOPED_TRACE(each.date);
        UserDefaultsExtras::setDate(defaults, utc(each.date), key);
        EXPECT_EQ(defaults.integerForKey(key), each.stored);
        const auto read = UserDefaultsExtras::dateForKey(readAgain(), key);
        EXPECT_EQ(read, each.read ? std::optional(utc(each.read)) : std::nullopt);
    }
}

TEST_F(UserDefaultsExtrasTest, countersCountIn32BitsAndAreInTheFileAtOnce)
{
    const struct {
        QVariant stored;
        int next;
    } cases[] = {{{}, 1}, {1, 2}, {QStringLiteral("41 archives"), 42}, {QStringLiteral("x"), 1},
        {true, 2}, {-1, 0}, {std::numeric_limits<int>::max(), std::numeric_limits<int>::min()},
        {QByteArray("5"), 1}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.stored.toString().toStdString());
        defaults.setObject(each.stored, key);
        EXPECT_EQ(UserDefaultsExtras::incrementIntegerForKey(defaults, key), each.next);
        EXPECT_EQ(readAgain().integerForKey(key), each.next);
    }
}

TEST(DictionaryAccess, keepsTheTypeOfEachValue)
{
    QVariantMap dictionary;
    DictionaryAccess::setInteger(
        dictionary, std::numeric_limits<qint64>::min(), QStringLiteral("i"));
    DictionaryAccess::setFloat(dictionary, 0.1F, QStringLiteral("f"));
    DictionaryAccess::setBool(dictionary, true, QStringLiteral("b"));
    DictionaryAccess::setColor(dictionary, Qt::red, QStringLiteral("c"));
    DictionaryAccess::setFont(dictionary, QFont(QStringLiteral("a"), 9), QStringLiteral("t"));
    EXPECT_EQ(dictionary.value(QStringLiteral("i")), QVariant(std::numeric_limits<qint64>::min()));
    EXPECT_EQ(dictionary.value(QStringLiteral("f")).typeId(), QMetaType::Float);
    EXPECT_EQ(dictionary.value(QStringLiteral("f")).toDouble(), static_cast<double>(0.1F));
    EXPECT_EQ(dictionary.value(QStringLiteral("b")).typeId(), QMetaType::Bool);
    EXPECT_EQ(ValueCoding::colorOf(dictionary.value(QStringLiteral("c"))), QColor(Qt::red));
    EXPECT_EQ(
        ValueCoding::fontOf(dictionary.value(QStringLiteral("t"))), QFont(QStringLiteral("a"), 9));
}
