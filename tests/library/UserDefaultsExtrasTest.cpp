// Typed values in the settings and in dictionaries, with what they lose there.

#include "shared/Library/Extras/UserDefaultsExtras.h"

#include "platform/base/bundle/Bundle.h"
#include "shared/Library/Extras/DictionaryAccess.h"
#include "shared/Library/Extras/ValueCoding.h"
#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <QDebug>

#include <gtest/gtest.h>

using namespace UserDefaultsExtras;

namespace
{

struct UserDefaultsExtrasTest : testing::Test {
    const support::TestFolder folder;
    const std::filesystem::path file = folder / "a.conf";
    const QString key = QStringLiteral("key");
    UserDefaults defaults{file};
};

} // namespace

TEST_F(UserDefaultsExtrasTest, resourcesAreFallbacks)
{
    const Bundle former = Bundle::main();
    const std::filesystem::path resources = folder / "Contents/Resources";
    support::writeFile(resources / "Broken.plist", "<plist><dict>");
    support::writeFile(resources / "Good.plist",
        "<plist><dict><key>key</key><dict><key>a</key><array><data>AAE=</data><integer>7</integer>"
        "<date>2026-03-14T12:00:30Z</date><real>0.5</real><string>ä</string><true/></array></dict>"
        "</dict></plist>");
    Bundle::setMain(Bundle(folder.path()));
    for (const QString& name : {u"Missing"_qs, u"Broken"_qs, u"Good"_qs}) {
        EXPECT_FALSE(defaults.objectForKey(key).isValid());
        registerDefaultsWithResource(defaults, name);
    }
    Bundle::setMain(former);
    const auto date = QDateTime::fromString(u"2026-03-14T12:00:30Z"_qs, Qt::ISODate);
    EXPECT_EQ(defaults.objectForKey(key).toMap()[u"a"_qs].toList(),
        QVariantList({QByteArray("\0\1", 2), qint64{7}, date, 0.5, u"ä"_qs, true}));
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(UserDefaultsExtrasTest, coloursAndFontsComeBackWholeOrNotAtAll)
{
    const QColor color = QColor::fromCmykF(.1F, .2F, .3F, .4F);
    const QFont font(u"Some Font"_qs, 17, QFont::Bold, true);
    EXPECT_FALSE(colorForKey(defaults, key) || fontForKey(defaults, key));
    setColor(defaults, color, key);
    EXPECT_EQ(colorForKey(UserDefaults(file), key), color);
    setFont(defaults, font, key);
    EXPECT_EQ(fontForKey(UserDefaults(file), key), font);
    const QByteArray good = ValueCoding::dataOf(font);
    const QByteArray soManyFamilies = good.chopped(26) + QByteArray(4, '\xfe');
    for (const QVariant& bad : QVariantList{u"red"_qs, good + '\0', good.chopped(1), soManyFamilies,
             ValueCoding::dataOf(color).chopped(1)}) {
        defaults.setObject(bad, key);
        EXPECT_THROW((void)fontForKey(defaults, key), UnarchivingFailure);
        EXPECT_THROW((void)colorForKey(defaults, key), UnarchivingFailure);
    }
}

TEST_F(UserDefaultsExtrasTest, pointsAndDatesLosePrecision)
{
    EXPECT_EQ(pointForKey(defaults, key), QPointF(0, 0));
    setPoint(defaults, {0.1, -1e20}, key);
    EXPECT_EQ(pointForKey(UserDefaults(file), key), QPointF(0.1F, -1e20F));
    EXPECT_EQ(defaults.arrayForKey(key)->back().toDouble(), double{-1e20F});
    QVariantMap dictionary;
    DictionaryAccess::setPoint(dictionary, {0.1, 2}, key);
    EXPECT_EQ(dictionary[key].toList().front(), 0.1);
    defaults.setObject(dictionary[key], key);
    EXPECT_EQ(pointForKey(defaults, key), QPointF(0.1F, 2));
    defaults.setObject(QVariantList{1}, key);
    EXPECT_THROW((void)pointForKey(defaults, key), std::out_of_range);

    const std::tuple<double, qint64, qint64> dates[] // all since 2001: given, stored, read
        = {{795182430, 795182430, 795182400}, {795182432, 795182432, 795182464}, {1.999, 1, 1},
            {-0.999, 0, 0}, {-978307200, -978307200, 0}};
    for (const auto& [given, stored, read] : dates) {
        setDate(defaults, QDateTime::fromMSecsSinceEpoch(978307200000 + qint64(given * 1000)), key);
        EXPECT_EQ(defaults.integerForKey(key), stored);
        const auto date = dateForKey(UserDefaults(file), key);
        EXPECT_EQ(date ? date->toSecsSinceEpoch() - 978307200 : 0, read);
    }
}

TEST_F(UserDefaultsExtrasTest, countsIn32BitsAndWithOtherPrograms)
{
    const std::pair<const char*, int> counts[]
        = {{"2147483647", INT_MIN}, {"41 archives", 42}, {"x", 1}, {"", 1}};
    for (const auto& [stored, next] : counts) {
        support::writeFile(file, std::string("[General]\nkey=") + stored); // by another program
        EXPECT_EQ(incrementIntegerForKey(defaults, key), next);
        EXPECT_EQ(support::readFile(file), "[General]\nkey=" + std::to_string(next) + "\n");
    }
    EXPECT_EQ(stringForKey(defaults, key, u"x"_qs), u"1");
    EXPECT_EQ(stringForKey(defaults, u"no"_qs, u"x"_qs), u"x");
}
