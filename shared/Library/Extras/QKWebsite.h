// The maker's web site and its catalogue of products. Pages open in the user's browser; nothing is
// waited for or reported, and text that makes no valid address opens nothing. Main thread; there
// are no instances.
#pragma once

#include <QString>
#include <QUrl>

#include <cstdint>
#include <optional>

class QKWebsite
{
public:
    QKWebsite() = delete;

    static void visitHomePage();

    // A path below the home page, such as "forum/", taken as it is.
    static void visitPage(const QString& page);

    static void visitProductPage(std::int32_t productId);

    // Nothing for ids that are not in the catalogue.
    [[nodiscard]] static std::optional<QUrl> urlForProductId(std::int32_t productId);
    [[nodiscard]] static std::optional<QString> productNameForProductId(std::int32_t productId);
    [[nodiscard]] static std::optional<QString> productDirForProductId(std::int32_t productId);

    // False, with nothing opened, for what cannot be downloaded.
    static bool download(std::int32_t productId);

    // The product's comment page.
    static void visitMUForProductId(std::int32_t productId);

    // Deprecated, as the log says on every call.
    static void visitMacAppStoreForProductId(std::int32_t productId);

    // Feedback form and information page on an independent download site; those of number 0 for a
    // product that is not listed there.
    static void visitVTPost(std::int32_t productId);
    static void visitVTRead(std::int32_t productId);

private:
    static std::int32_t _vtIdForProduct(std::int32_t productId);
};
