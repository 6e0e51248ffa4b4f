#include "shared/Library/Extras/QKWebsite.h"

#include "platform/desktop/services/Workspace.h"

#include <QDebug>
#include <QStringList>

#include <functional>

#include <gtest/gtest.h>

namespace
{

QStringList logged;

// What is opened and logged by one call.
struct Seen {
    QStringList opened;
    QStringList messages;
};

class Recorder : public Workspace
{
public:
    bool openURL(const QUrl& url) override
    {
        opened << url.toString(QUrl::FullyEncoded);
        return true;
    }

    QStringList opened;
};

Seen seenIn(const std::function<void()>& call)
{
    Recorder recorder;
    Workspace::setSharedWorkspace(&recorder);
    logged.clear();
    const auto former = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { logged << text; });
    call();
    qInstallMessageHandler(former);
    Workspace::setSharedWorkspace(nullptr);
    return {.opened = recorder.opened, .messages = logged};
}

const std::int32_t everyId[] = {0, 1, 2, 3, 4, 20, 21, 22, 23, 40};

} // namespace

TEST(QKWebsite, opensThePagesOfTheSite)
{
    const QString home = QStringLiteral(PARCELO_SITE);
    const QString other = QStringLiteral("http://downloads.example/");
    const auto page = [](const char* path) {
        return [path] { QKWebsite::visitPage(QString::fromUtf8(path)); };
    };
    struct Case {
        const char* name;
        std::function<void()> call;
        QStringList opened;
    };
    const Case cases[] = {
        {"home", QKWebsite::visitHomePage, {home}},
        {"forum", page("forum/"), {home + u"forum/"_qs}},
        {"query", page("sendora/?kvw5"), {home + u"sendora/?kvw5"_qs}},
        {"escaped", page("a%20b"), {home + u"a%20b"_qs}},
        {"blank", page("a b/"), {}},
        {"line end", page("a\n"), {}},
        {"bad escape", page("50%/"), {}},
        {"not ASCII", page("\u00fcber/"), {}},
        {"product", [] { QKWebsite::visitProductPage(22); }, {home + u"parcelo/"_qs}},
        {"no product", [] { QKWebsite::visitProductPage(7); }, {}},
        {"comments", [] { QKWebsite::visitMUForProductId(3); }, {home + u"sendora/mu/"_qs}},
        {"comments of none", [] { QKWebsite::visitMUForProductId(-1); }, {}},
        {"download", [] { EXPECT_TRUE(QKWebsite::download(22)); },
            {home + u"download/Parcelo.dmg"_qs}},
        {"no download", [] { EXPECT_FALSE(QKWebsite::download(40)); }, {}},
        {"unknown download", [] { EXPECT_FALSE(QKWebsite::download(24)); }, {}},
        {"listed nowhere", [] { QKWebsite::visitVTRead(40); },
            {other + u"dyn/moreinfo/macosx/0"_qs}},
        {"feedback on 0", [] { QKWebsite::visitVTPost(-5); },
            {other + u"php/feedback/submit.php?TID=feedback&contentDB=macosx&contentID=0"_qs}},
    };
    for (const Case& each : cases) {
        const Seen seen = seenIn(each.call);
        EXPECT_EQ(seen.opened, each.opened) << each.name;
        EXPECT_EQ(seen.messages, QStringList()) << each.name;
    }
}

TEST(QKWebsite, saysOnEveryCallThatTheStoreIsDeprecated)
{
    const QStringList message(QStringLiteral("visitMacAppStoreForProductId is deprecated"));
    const Seen known = seenIn([] { QKWebsite::visitMacAppStoreForProductId(22); });
    EXPECT_EQ(known.opened, QStringList(QStringLiteral(PARCELO_SITE) + u"parcelo/mas/"_qs));
    EXPECT_EQ(known.messages, message);
    const Seen unknown = seenIn([] { QKWebsite::visitMacAppStoreForProductId(19); });
    EXPECT_EQ(unknown.opened, QStringList());
    EXPECT_EQ(unknown.messages, message);
}

TEST(QKWebsite, knowsItsProductsAndNoOthers)
{
    EXPECT_EQ(QKWebsite::productNameForProductId(22), u"Parcelo");
    EXPECT_EQ(QKWebsite::productNameForProductId(3), u"Sendora");
    for (const std::int32_t id : {INT32_MIN, -1, 5, 19, 24, 39, 41, INT32_MAX}) {
        EXPECT_EQ(QKWebsite::productNameForProductId(id), std::nullopt) << id;
        EXPECT_EQ(QKWebsite::productDirForProductId(id), std::nullopt) << id;
        EXPECT_EQ(QKWebsite::urlForProductId(id), std::nullopt) << id;
    }

    QStringList shortened;
    QStringList listings;
    for (const std::int32_t id : everyId) {
        const QString name = QKWebsite::productNameForProductId(id).value_or(QString());
        const QString directory = QKWebsite::productDirForProductId(id).value_or(QString());
        EXPECT_EQ(QKWebsite::urlForProductId(id)->toString(),
            QStringLiteral(PARCELO_SITE) + directory + u'/');
        EXPECT_EQ(directory, directory.toLower());
        if (directory != name.toLower()) {
            EXPECT_TRUE(name.toLower().startsWith(directory)) << qPrintable(name);
            shortened << name;
        }
        const Seen download = seenIn([&] { EXPECT_EQ(QKWebsite::download(id), id != 40); });
        if (id != 40) {
            const QString file = QUrl(download.opened.value(0)).fileName();
            EXPECT_EQ(file.compare(name + u".dmg"_qs, Qt::CaseInsensitive), 0);
            EXPECT_EQ(file != name + u".dmg"_qs, id == 20) << qPrintable(file);
            const Seen listing = seenIn([&] { QKWebsite::visitVTRead(id); });
            listings << QUrl(listing.opened.value(0)).fileName();
            EXPECT_EQ(listings.back().size(), 5);
        }
    }
    EXPECT_EQ(shortened.size(), 1);
    EXPECT_EQ(listings.removeDuplicates(), 0);
}
