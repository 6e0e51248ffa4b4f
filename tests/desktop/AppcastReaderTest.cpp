#include "platform/desktop/updates/AppcastReader.h"

#include "platform/desktop/updates/HTMLText.h"

#include <QElapsedTimer>
#include <QStringList>

#include <gtest/gtest.h>

using AppcastReader::Fault;
using AppcastReader::Item;

namespace
{

QByteArray feedOf(const QByteArray& items)
{
    return "<?xml version='1.0' encoding='UTF-8'?><!-- a feed --><rss version='2.0' "
           "xmlns:s='urn:x' xmlns:atom='urn:a'><channel><title>T</title>"
           "<atom:link href='x'/><link>http://a.example/</link>"
        + items + "</channel></rss>";
}

QString newestVersionIn(const QByteArray& items)
{
    const AppcastReader::Feed feed = AppcastReader::read(feedOf(items));
    const Item* newest = AppcastReader::newestItem(feed.items);
    return newest ? newest->version : QStringLiteral("none");
}

} // namespace

TEST(AppcastReader, readsElementsBeforeAttributes)
{
    const auto feed = AppcastReader::read(feedOf(
        "<item><title>Two</title><s:version>2.0</s:version><atom:link href='y'/>"
        "<link> https://a.example/two </link><pubDate>Thu, 01 Jan 2026 00:00:00 +0000</pubDate>"
        "<description><![CDATA[<b>new</b> &amp; old]]></description><s:criticalUpdate/>"
        "<s:informationalUpdate><s:version>1</s:version></s:informationalUpdate>"
        "<enclosure url='http://a.example/2.zip' s:version='1.9' s:shortVersionString='2' "
        "s:os='linux' length='1' type='a/b'/><s:channel>beta</s:channel></item>"
        "<item><version>1.0</version><media>x<version>9</version></media></item>"));
    ASSERT_EQ(feed.fault, Fault::none);
    ASSERT_EQ(feed.items.size(), 2U);
    const Item& two = feed.items[0];
    EXPECT_EQ(two.title, u"Two");
    EXPECT_EQ(two.version, u"2.0");
    EXPECT_EQ(two.shortVersionString, u"2");
    EXPECT_EQ(two.link, u"https://a.example/two");
    EXPECT_EQ(two.pubDate, u"Thu, 01 Jan 2026 00:00:00 +0000");
    EXPECT_EQ(two.description, u"<b>new</b> &amp; old");
    EXPECT_EQ(two.enclosureURL, u"http://a.example/2.zip");
    EXPECT_EQ(two.os, u"linux");
    EXPECT_EQ(two.channel, u"beta");
    EXPECT_TRUE(two.isCritical);
    EXPECT_TRUE(two.isInformational);
    EXPECT_EQ(feed.items[1].version, u"1.0");
    EXPECT_EQ(feed.items[1].link, u"http://a.example/");
    EXPECT_TRUE(feed.items[1].enclosureURL.isEmpty());
}

TEST(AppcastReader, namesWhatIsWrongWithAFeed)
{
    struct Case {
        const char* name;
        QByteArray bytes;
        Fault fault;
    };
    const QByteArray fine = feedOf("<item><s:version>1</s:version></item>");
    const Case cases[] = {
        {"fine", fine, Fault::none},
        {"without items", feedOf(""), Fault::none},
        {"largest", fine + QByteArray(AppcastReader::largestFeedInBytes - fine.size(), ' '),
            Fault::none},
        {"too large", fine + QByteArray(AppcastReader::largestFeedInBytes + 1 - fine.size(), ' '),
            Fault::tooLarge},
        {"doctype", "<!DOCTYPE rss [<!ENTITY a 'b'>]><rss><channel/></rss>", Fault::documentType},
        {"bare doctype", "<!DOCTYPE rss><rss><channel/></rss>", Fault::documentType},
        {"empty", "", Fault::malformed},
        {"text", "not found", Fault::malformed},
        {"cut short", fine.left(fine.size() - 5), Fault::malformed},
        {"rubbish after it", fine + "<x>", Fault::malformed},
        {"bad entity", feedOf("<item><title>&a;</title></item>"), Fault::malformed},
        {"bad bytes", feedOf("<item><title>\xff</title></item>"), Fault::malformed},
        {"unknown prefix", feedOf("<item><q:version>1</q:version></item>"), Fault::malformed},
        {"page", "<html><body/></html>", Fault::noFeed},
        {"no channel", "<rss><item/></rss>", Fault::noFeed},
    };
    for (const Case& each : cases) {
        const AppcastReader::Feed feed = AppcastReader::read(each.bytes);
        EXPECT_EQ(feed.fault, each.fault) << each.name;
        if (each.fault != Fault::none) {
            EXPECT_TRUE(feed.items.empty()) << each.name;
        }
    }
}

TEST(AppcastReader, choosesTheHighestVersionForThisSystem)
{
    struct Case {
        const char* items;
        const char* version;
    };
    const Case cases[] = {
        {"", "none"},
        {"<item/>", "none"},
        {"<item><s:version>1</s:version></item><item><s:version>1.10</s:version></item>"
         "<item><s:version>1.9</s:version></item>",
            "1.10"},
        {"<item><s:version>1</s:version></item>"
         "<item><enclosure s:version='2' s:os='macos'/></item>"
         "<item><s:version>3</s:version><s:channel>beta</s:channel></item>"
         "<item><s:version>1.1</s:version><s:os>Linux</s:os></item>",
            "1.1"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(newestVersionIn(each.items), QLatin1String(each.version)) << each.items;
}

TEST(AppcastReader, ordersVersions)
{
    // From the lowest to the highest; equal ones on one line.
    const QList<QStringList> order = {
        {u"~"_qs},
        {u"a"_qs},
        {u""_qs, u"0"_qs, u"0.0"_qs, u"."_qs},
        {u"0.9"_qs, u"0.09"_qs, u"0-9"_qs},
        {u"1.0~~"_qs},
        {u"1.0~beta"_qs},
        {u"1.0a"_qs, u"1.0.A"_qs},
        {u"1.0b2"_qs},
        {u"1.0b10"_qs},
        {u"1.0rc"_qs},
        {u"1.0"_qs, u"1"_qs, u"1.0.0"_qs, u"01"_qs},
        {u"1.0.1a"_qs},
        {u"1.0.1"_qs},
        {u"1.9"_qs},
        {u"1.10"_qs},
        {u"2033"_qs},
        {u"99999999999999999999998"_qs},
        {u"99999999999999999999999"_qs},
    };
    for (int lower = 0; lower < order.size(); ++lower)
        for (int higher = lower; higher < order.size(); ++higher)
            for (const QString& first : order[lower])
                for (const QString& second : order[higher]) {
                    const int result = AppcastReader::compareVersions(first, second);
                    const int reverse = AppcastReader::compareVersions(second, first);
                    EXPECT_EQ(result < 0, lower < higher) << qPrintable(first + u' ' + second);
                    EXPECT_EQ(reverse > 0, lower < higher) << qPrintable(first + u' ' + second);
                }
}

TEST(HTMLText, keepsTheTextAndItsLines)
{
    struct Case {
        const char* html;
        const char* text;
    };
    const Case cases[] = {
        {"a < b\n  & c", "a < b\n  & c"}, // holds no tag
        {"<h2>New</h2>\n<ul>\n <li>One <b>bold</b>\n thing</li>\n <li>Two</li></ul>",
            "New\n\u2022 One bold thing\n\u2022 Two"},
        {"a<br>b<br/><BR />c", "a\nb\nc"},
        {"<p>1 &lt; 2 &amp;lt; &quot;3&quot; &nbsp;&unknown;</p>", "1 < 2 &lt; \"3\"  &unknown;"},
        {"It&#8217;s &#x41;&hellip;", "It’s A…"},
        {"one &amp; two\n  three", "one & two\n  three"}, // no tag, so lines are lines
        {"<p>a&#10;b&#173;c&#8203;d&#9;e", "a\nbcd e"},
        {"a &#0; &#xD800; &#99999999; &; &#; &#x;&amp",
            "a &#0; &#xD800; &#99999999; &; &#; &#x;&amp"},
        {"a<!-- <p> -->b<script>x<y</script>c<STYLE>d</style>e", "abce"},
        {"a <i>b</i>, <i>c", "a b, c"},
        {"a<p b", "a"},
        {"<p>a<!-- b", "a"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(HTMLText::plainText(QString::fromUtf8(each.html)), QString::fromUtf8(each.text))
            << each.html;
}

// A feed can be this large, and nobody vouches for what is in it.
TEST(HTMLText, takesLinearTime)
{
    for (const char* piece :
        {"<", "<a", "<!--", "<script", "<p>", " ", "&", "</", "<li> ", "&lt;<"}) {
        QElapsedTimer timer;
        timer.start();
        const auto count = AppcastReader::largestFeedInBytes / qsizetype(qstrlen(piece));
        (void)HTMLText::plainText(QString::fromUtf8(QByteArray(piece).repeated(count)));
        EXPECT_LT(timer.elapsed(), 5000) << piece;
    }
}
