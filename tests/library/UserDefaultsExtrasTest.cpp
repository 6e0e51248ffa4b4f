// Typed values in the settings and in dictionaries, with what they lose there.

#include "shared/Library/Extras/UserDefaultsExtras.h"

#include "platform/base/bundle/Bundle.h"
#include "shared/Library/Extras/DictionaryAccess.h"
#include "shared/Library/Extras/ValueCoding.h"
#include "tests/support/qt/QtTest.h"

using namespace UserDefaultsExtras;

struct UserDefaultsExtrasTest : testing::Test {
    const TestFolder folder;
    const fs::path file = folder / "a.conf";
    const QString key = QStringLiteral("key");
    UserDefaults defaults{file};
};

TEST_F(UserDefaultsExtrasTest, resourcesAreFallbacks)
{
    const Bundle former = Bundle::main();
    writeFile(folder / "Contents/Resources/Broken.plist", "<plist><dict>");
    writeFile(folder / "Contents/Resources/Good.plist",
        "<plist><dict><key>key</key><array><integer>7</integer>"
        "<data>AAE=</data><real>0.5</real><string>ä</string><true/></array></dict></plist>");
    Bundle::setMain(Bundle(folder.path()));
    for (const QString& name : {u"Missing"_qs, u"Broken"_qs, u"Good"_qs}) {
        EXPECT_FALSE(defaults.objectForKey(key).isValid());
        registerDefaultsWithResource(defaults, name);
    }
    Bundle::setMain(former);
    EXPECT_EQ(
        defaults.arrayForKey(key), QVariantList({7, QByteArray("\0\1", 2), 0.5, u"ä"_qs, true}));
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(UserDefaultsExtrasTest, coloursAndFontsComeBackWholeOrNotAtAll)
{
    const QColor color = QColor::fromCmykF(.1F, .2F, .3F, .4F);
    const QFont font(u"Some Font"_qs, 17, QFont::Bold, true);
    setColor(defaults, color, key);
    EXPECT_EQ(colorForKey(UserDefaults(file), key), color);
    setFont(defaults, font, key);
    EXPECT_EQ(fontForKey(UserDefaults(file), key), font);
    defaults.setObject(ValueCoding::dataOf(font).chopped(1), key);
    EXPECT_THROW((void)fontForKey(defaults, key), UnarchivingFailure);
}

TEST_F(UserDefaultsExtrasTest, pointsAndDatesLosePrecision)
{
    setPoint(defaults, {0.1, -1e20}, key);
    EXPECT_EQ(pointForKey(UserDefaults(file), key), QPointF(0.1F, -1e20F));
    QVariantMap dictionary;
    DictionaryAccess::setPoint(dictionary, {0.1, 2}, key);
    EXPECT_EQ(dictionary[key].toList(), QVariantList({0.1, 2.0}));
    setDate(defaults, QDateTime::fromSecsSinceEpoch(978307200 + 795182432), key);
    EXPECT_EQ(dateForKey(defaults, key)->toSecsSinceEpoch(), 978307200 + 795182464);
}

TEST_F(UserDefaultsExtrasTest, countsIn32BitsAndWithOtherPrograms)
{
    const std::pair<const char*, int> counts[]
        = {{"2147483647", INT_MIN}, {"41 archives", 42}, {"", 1}};
    for (const auto& [stored, next] : counts) {
        writeFile(file, std::string("[General]\nkey=") + stored); // by another program
        EXPECT_EQ(incrementIntegerForKey(defaults, key), next);
        EXPECT_EQ(readFile(file), "[General]\nkey=" + std::to_string(next) + "\n");
    }
    EXPECT_EQ(stringForKey(defaults, key, u"x"_qs) + stringForKey(defaults, {}, u"x"_qs), u"1x");
}
