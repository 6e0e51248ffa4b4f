#include "shared/Library/Extras/QKWebsite.h"

#include "platform/desktop/services/Workspace.h"

#include <algorithm>
#include <array>

namespace
{

const QString homeBase = QStringLiteral(PARCELO_SITE);
const QString downloadBase = homeBase + QStringLiteral("download/");
const QString independentSite = QStringLiteral("http://downloads.example/");

struct Product {
    std::int32_t id;
    const char* name;
    const char* directory;
    const char* downloadName; // null: cannot be downloaded
    std::int32_t listingNumber; // on the independent site; 0: not listed
};

// Directories are names in lower case, but for 4; the download of 20 has a spelling of its own; 40
// is no product but a system that products run on.
constexpr auto catalogue = std::to_array<Product>({
    {0, "Tidyshelf", "tidyshelf", "Tidyshelf", 31204},
    {1, "Notemark", "notemark", "Notemark", 32417},
    {2, "Framely", "framely", "Framely", 33580},
    {3, "Sendora", "sendora", "Sendora", 35126},
    {4, "Clockwright", "clock", "Clockwright", 36093},
    {20, "PageLoom", "pageloom", "Pageloom", 38741},
    {21, "Lumograph", "lumograph", "Lumograph", 39258},
    {22, "Parcelo", "parcelo", "Parcelo", 40615},
    {23, "Wordkiln", "wordkiln", "Wordkiln", 41877},
    {40, "Ridgeline", "ridgeline", nullptr, 0},
});

const Product* productWithId(std::int32_t productId)
{
    const auto* const found = std::find_if(catalogue.begin(), catalogue.end(),
        [&](const Product& product) { return product.id == productId; });
    return found == catalogue.end() ? nullptr : found;
}

// An address has no blanks and no other letters than ASCII's; Qt would mend the latter.
bool isAddress(const QString& text, const QUrl& url)
{
    return url.isValid() && std::all_of(text.begin(), text.end(), [](QChar unit) {
        return unit > u' ' && unit < u'\u007f';
    });
}

void open(const QString& address)
{
    const QUrl url(address, QUrl::StrictMode);
    if (isAddress(address, url))
        Workspace::sharedWorkspace().openURL(url);
}

// A page in the product's folder; none for what has no folder.
void openProductPage(std::int32_t productId, const QString& page)
{
    if (const auto directory = QKWebsite::productDirForProductId(productId))
        open(homeBase + *directory + u'/' + page);
}

} // namespace

void QKWebsite::visitHomePage()
{
    open(homeBase);
}

void QKWebsite::visitPage(const QString& page)
{
    open(homeBase + page);
}

void QKWebsite::visitProductPage(std::int32_t productId)
{
    openProductPage(productId, {});
}

std::optional<QUrl> QKWebsite::urlForProductId(std::int32_t productId)
{
    const auto directory = productDirForProductId(productId);
    return directory ? std::optional(QUrl(homeBase + *directory + u'/')) : std::nullopt;
}

std::optional<QString> QKWebsite::productNameForProductId(std::int32_t productId)
{
    const Product* product = productWithId(productId);
    return product ? std::optional(QString::fromLatin1(product->name)) : std::nullopt;
}

std::optional<QString> QKWebsite::productDirForProductId(std::int32_t productId)
{
    const Product* product = productWithId(productId);
    return product ? std::optional(QString::fromLatin1(product->directory)) : std::nullopt;
}

bool QKWebsite::download(std::int32_t productId)
{
    const Product* product = productWithId(productId);
    if (!product || !product->downloadName)
        return false;
    open(downloadBase + QLatin1String(product->downloadName) + QStringLiteral(".dmg"));
    return true;
}

void QKWebsite::visitMUForProductId(std::int32_t productId)
{
    openProductPage(productId, QStringLiteral("mu/"));
}

void QKWebsite::visitMacAppStoreForProductId(std::int32_t productId)
{
    qWarning("visitMacAppStoreForProductId is deprecated");
    openProductPage(productId, QStringLiteral("mas/"));
}

void QKWebsite::visitVTPost(std::int32_t productId)
{
    const auto page
        = QStringLiteral("php/feedback/submit.php?TID=feedback&contentDB=macosx&contentID=%1");
    open(independentSite + page.arg(_vtIdForProduct(productId)));
}

void QKWebsite::visitVTRead(std::int32_t productId)
{
    const auto page = QStringLiteral("dyn/moreinfo/macosx/%1");
    open(independentSite + page.arg(_vtIdForProduct(productId)));
}

std::int32_t QKWebsite::_vtIdForProduct(std::int32_t productId)
{
    const Product* product = productWithId(productId);
    return product ? product->listingNumber : 0;
}
