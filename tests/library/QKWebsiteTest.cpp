#include "shared/Library/Extras/QKWebsite.h"

#include "platform/desktop/services/Workspace.h"

#include <QDebug>

#include <gtest/gtest.h>

namespace
{

struct Recorder : Workspace {
    bool openURL(const QUrl& url) override
    {
        opened.push_back(url.toEncoded().toStdString());
        return true;
    }
    std::vector<std::string> opened;
};

} // namespace

TEST(QKWebsite, opensThePagesOfItsProductsAndNoOthers)
{
    Recorder recorder;
    Workspace::setSharedWorkspace(&recorder);
    for (const char* page : {"sendora/?a%20b", "a b/", "a\n", "50%/", "\u00fcber/"})
        QKWebsite::visitPage(QString::fromUtf8(page)); // all but the first are no addresses
    for (const std::int32_t id : {22, 3, -1, 5, 24, 41}) {
        QKWebsite::visitProductPage(id);
        QKWebsite::visitMUForProductId(id);
    }
    for (const std::int32_t id : {-1, 5, 20, 40})
        EXPECT_EQ(QKWebsite::download(id), id == 20);
    QKWebsite::visitVTRead(22);
    QKWebsite::visitVTPost(40);
    testing::internal::CaptureStderr();
    QKWebsite::visitMacAppStoreForProductId(22);
    QKWebsite::visitMacAppStoreForProductId(19);
    const std::string message = "visitMacAppStoreForProductId is deprecated\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), message + message);
    Workspace::setSharedWorkspace(nullptr);

    const std::vector<std::string> expected{PARCELO_SITE "sendora/?a%20b", PARCELO_SITE "parcelo/",
        PARCELO_SITE "parcelo/mu/", PARCELO_SITE "sendora/", PARCELO_SITE "sendora/mu/",
        PARCELO_SITE "download/Pageloom.dmg", "http://downloads.example/dyn/moreinfo/macosx/40615",
        "http://downloads.example/php/feedback/"
        "submit.php?TID=feedback&contentDB=macosx&contentID=0",
        PARCELO_SITE "parcelo/mas/"};
    EXPECT_EQ(recorder.opened, expected);
    EXPECT_EQ(QKWebsite::urlForProductId(7), std::nullopt);
}
