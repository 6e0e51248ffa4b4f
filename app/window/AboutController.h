// Runs the About window, with its links to the maker. Main thread only.
#pragma once

#include <QDialog>

#include <cstdint>
#include <memory>

class AboutController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString appNameAndVersion READ appNameAndVersion CONSTANT)

public:
    static constexpr std::int32_t noProduct = -1;

    AboutController();
    explicit AboutController(std::int32_t productId);
    ~AboutController() override;

    // In the middle of the screen, with nothing in it focused.
    void showWindow(QObject* sender);

    // The names under which the bundle knows its executable and its version.
    [[nodiscard]] static QString appNameAndVersion();

    void sendMail(QObject* sender);
    void visitWebsite(QObject* sender);
    void visitCommentPage(QObject* sender);

    [[nodiscard]] std::int32_t productId() const { return _productId; }
    void setProductId(std::int32_t productId) { _productId = productId; }

private:
    void _loadWindow();

    std::int32_t _productId;
    std::unique_ptr<QDialog> _window; // loaded when first shown
};
