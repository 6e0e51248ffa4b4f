// Runs the About window, with its links to the maker. Main thread only.
#pragma once

#include <QDialog>
#include <QPointer>

#include <cstdint>

class AboutController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString appNameAndVersion READ appNameAndVersion CONSTANT)

public:
    static constexpr std::int32_t noProduct = -1;

    AboutController();
    explicit AboutController(std::int32_t productId);
    ~AboutController() override;

    // The window that the About window stays over; borrowed. The screen is that window's.
    void setMainWindow(QWidget* window) { _mainWindow = window; }

    // In the middle of the main window or else of the screen, with nothing in it focused.
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
    [[nodiscard]] QPoint _place() const;

    std::int32_t _productId;
    QPointer<QWidget> _mainWindow;
    QPointer<QDialog> _window; // loaded when first shown; goes with the main window at the latest
};
