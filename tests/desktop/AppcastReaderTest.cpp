#include "platform/desktop/updates/AppcastReader.h"

#include "platform/desktop/updates/HTMLText.h"
#include "tests/support/qt/QtTest.h"

#include <QStringList>

namespace
{

QByteArray feedOf(const QByteArray& items)
{
    return "<?xml version='1.0' encoding='UTF-8'?><!-- a feed --><rss version='2.0' "
           "xmlns:s='urn:x'>"
           "<channel><title>T</title><link>http://a.example/</link>"
        + items + "</channel></rss>";
}

} // namespace

TEST(AppcastReader, readsElementsBeforeAttributesAndChoosesTheHighestForThisSystem)
{
    const auto items = AppcastReader::read(
        feedOf("<item><s:version>2.0</s:version><link> https://a.example/two </link>"
               "<description><![CDATA[<b>new</b> &amp; old]]></description><s:criticalUpdate/>"
               "<enclosure url='http://a.example/2.zip' s:version='1.9' s:shortVersionString='2' "
               "s:os='linux' length='1' type='a/b'/><s:channel>beta</s:channel></item>"
               "<item><version>1.9</version><media>x<version>9</version></media></item><item/>"
               "<item><enclosure version='2' os='macos'/></item>"
               "<item><version>1.10</version><os>Linux</os></item>"));
    ASSERT_EQ(items.value().size(), 5U);
    const AppcastReader::Item& item = (*items)[0];
    EXPECT_EQ((QStringList{item.version, item.shortVersionString, item.link, item.description,
                  item.enclosureURL, item.os, item.channel}),
        (QStringList{"2.0", "2", "https://a.example/two", "<b>new</b> &amp; old",
            "http://a.example/2.zip", "linux", "beta"}));
    EXPECT_TRUE(item.isCritical);
    EXPECT_EQ((*items)[1].link, "http://a.example/");
    EXPECT_EQ(AppcastReader::newestItem(*items)->version, "1.10");
}

TEST(AppcastReader, takesNothingElseForAFeed)
{
    const QByteArray fine = feedOf("<item><s:version>1</s:version></item>");
    const QByteArray largest = fine.leftJustified(AppcastReader::largestFeedInBytes);
    EXPECT_TRUE(AppcastReader::read(largest));
    for (const QByteArray& bytes :
        {largest + ' ', QByteArray("<!DOCTYPE rss [<!ENTITY a 'b'>]><rss><channel/></rss>"),
            QByteArray("text"), fine.chopped(5), fine + "<x>",
            feedOf("<item><title>\xff</title></item>"), QByteArray("<html><body/></html>"),
            QByteArray("<rss><item/></rss>"), QByteArray()})
        EXPECT_FALSE(AppcastReader::read(bytes)) << bytes.left(100).constData();
}

TEST(AppcastReader, ordersVersions)
{
    const QStringList order
        = {"~", "a", "", "0.9", "1.0~~", "1.0~beta", "1.0a", "1.0b2", "1.0b10", "1.0", "1.0.1a",
            "1.0.1", "1.9", "1.10", "2033", "99999999999999999999998", "99999999999999999999999"};
    for (int one = 0; one < order.size(); ++one)
        for (int other = 0; other < order.size(); ++other) {
            const int result = AppcastReader::compareVersions(order[one], order[other]);
            EXPECT_TRUE(one < other ? result < 0
                    : one == other  ? result == 0
                                    : result > 0)
                << qPrintable(order[one] + ' ' + order[other]);
        }
    for (const char* same : {"1", "1.0.0", "01", "1-0"})
        EXPECT_EQ(AppcastReader::compareVersions("1.0", same), 0) << same;
}

TEST(HTMLText, keepsTheTextAndItsLines)
{
    const std::pair<QByteArray, const char*> cases[] = {
        {"a < b\n  & c &amp; d", "a < b\n  & c & d"}, // no tag, so lines are lines
        {"<h2>New</h2>\n<ul>\n <li>One <b>bold</b>\n thing</li>\n <li>Two</li></ul>a<BR />b",
            "New\n\u2022 One bold thing\n\u2022 Two\na\nb"},
        {"<p>1 &lt; 2 &amp;lt; &#8217;&#x41; &unknown; &#xD800;",
            "1 < 2 &lt; ’A &unknown; &#xD800;"},
        {"a<!-- <p> -->b<script>x<y</script>c<STYLE>d</style>e<p b", "abce"},
    };
    for (const auto& [html, text] : cases)
        EXPECT_EQ(HTMLText::plainText(html), QString::fromUtf8(text)) << html.constData();
}
