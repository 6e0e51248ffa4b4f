#include "platform/desktop/updates/AppcastReader.h"

#include "platform/desktop/updates/HTMLText.h"

#include <QElapsedTimer>
#include <QStringList>

#include <gtest/gtest.h>

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

} // namespace

TEST(AppcastReader, readsElementsBeforeAttributes)
{
    const auto items = AppcastReader::read(
        feedOf("<item><s:version>2.0</s:version><atom:link href='y'/>"
               "<link> https://a.example/two </link>"
               "<description><![CDATA[<b>new</b> &amp; old]]></description><s:criticalUpdate/>"
               "<s:informationalUpdate><s:version>1</s:version></s:informationalUpdate>"
               "<enclosure url='http://a.example/2.zip' s:version='1.9' s:shortVersionString='2' "
               "s:os='linux' length='1' type='a/b'/><s:channel>beta</s:channel></item>"
               "<item><version>1.0</version><media>x<version>9</version></media></item>"));
    ASSERT_EQ(items.value().size(), 2U);
    const auto textsOf = [](const Item& item) {
        return QStringList{item.version, item.shortVersionString, item.link, item.description,
            item.enclosureURL, item.os, item.channel};
    };
    EXPECT_EQ(textsOf((*items)[0]),
        (QStringList{"2.0", "2", "https://a.example/two", "<b>new</b> &amp; old",
            "http://a.example/2.zip", "linux", "beta"}));
    EXPECT_TRUE((*items)[0].isCritical);
    EXPECT_EQ(textsOf((*items)[1]), (QStringList{"1.0", "", "http://a.example/", "", "", "", ""}));
}

TEST(AppcastReader, readsNothingElse)
{
    const QByteArray fine = feedOf("<item><s:version>1</s:version></item>");
    const auto padded = [&](qsizetype size) { return fine + QByteArray(size - fine.size(), ' '); };
    for (const QByteArray& bytes : {feedOf(""), padded(AppcastReader::largestFeedInBytes)})
        EXPECT_TRUE(AppcastReader::read(bytes)) << bytes.left(100).constData();
    for (const QByteArray& bytes : {padded(AppcastReader::largestFeedInBytes + 1),
             QByteArray("<!DOCTYPE rss [<!ENTITY a 'b'>]><rss><channel/></rss>"),
             QByteArray("<!DOCTYPE rss><rss><channel/></rss>"), QByteArray(), QByteArray("text"),
             fine.chopped(5), fine + "<x>", feedOf("<item><title>&a;</title></item>"),
             feedOf("<item><title>\xff</title></item>"), feedOf("<item><q:version/></item>"),
             QByteArray("<html><body/></html>"), QByteArray("<rss><item/></rss>")})
        EXPECT_FALSE(AppcastReader::read(bytes)) << bytes.left(100).constData();
}

TEST(AppcastReader, choosesTheHighestVersionForThisSystem)
{
    const std::pair<const char*, const char*> cases[] = {
        {"<item/>", "none"},
        {"<item><version>1</version></item><item><version>1.10</version></item>"
         "<item><version>1.9</version></item>",
            "1.10"},
        {"<item><version>1</version></item><item><enclosure version='2' os='macos'/></item>"
         "<item><version>3</version><channel>beta</channel></item>"
         "<item><version>1.1</version><os>Linux</os></item>",
            "1.1"},
    };
    for (const auto& [items, version] : cases) {
        const std::vector<Item> read = AppcastReader::read(feedOf(items)).value();
        const Item* newest = AppcastReader::newestItem(read);
        EXPECT_EQ(newest ? newest->version : "none", QLatin1String(version)) << items;
    }
}

TEST(AppcastReader, ordersVersions)
{
    // From the lowest to the highest; equal ones on one line.
    const QList<QStringList> order = {{"~"}, {"a"}, {"", "0", "0.0", "."}, {"0.9", "0.09", "0-9"},
        {"1.0~~"}, {"1.0~beta"}, {"1.0a", "1.0.A"}, {"1.0b2"}, {"1.0b10"},
        {"1.0", "1", "1.0.0", "01"}, {"1.0.1a"}, {"1.0.1"}, {"1.9"}, {"1.10"}, {"2033"},
        {"99999999999999999999998"}, {"99999999999999999999999"}};
    for (int lower = 0; lower < order.size(); ++lower)
        for (int higher = lower; higher < order.size(); ++higher)
            for (const QString& first : order[lower])
                for (const QString& second : order[higher]) {
                    const int result = AppcastReader::compareVersions(first, second);
                    const int reverse = AppcastReader::compareVersions(second, first);
                    EXPECT_EQ(result < 0, lower < higher) << qPrintable(first + ' ' + second);
                    EXPECT_EQ(reverse > 0, lower < higher) << qPrintable(first + ' ' + second);
                }
}

TEST(HTMLText, keepsTheTextAndItsLines)
{
    const std::pair<const char*, const char*> cases[] = {
        {"a < b\n  & c &amp; d", "a < b\n  & c & d"}, // no tag, so lines are lines
        {"<h2>New</h2>\n<ul>\n <li>One <b>bold</b>\n thing</li>\n <li>Two</li></ul>",
            "New\n\u2022 One bold thing\n\u2022 Two"},
        {"a<br>b<br/><BR />c", "a\nb\nc"},
        {"<p>1 &lt; 2 &amp;lt; &quot;3&quot; &nbsp;&unknown;", "1 < 2 &lt; \"3\"  &unknown;"},
        {"It&#8217;s &#x41;&hellip;", "It’s A…"},
        {"<p>a&#10;b&#173;c&#8203;d&#9;e", "a\nbcd e"},
        {"&#0; &#xD800; &#99999999; &; &#; &#x;&amp", "&#0; &#xD800; &#99999999; &; &#; &#x;&amp"},
        {"a<!-- <p> -->b<script>x<y</script>c<STYLE>d</style>e", "abce"},
        {"a<p b", "a"},
        {"<p>a<!-- b", "a"},
    };
    for (const auto& [html, text] : cases)
        EXPECT_EQ(HTMLText::plainText(html), QString::fromUtf8(text)) << html;
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
