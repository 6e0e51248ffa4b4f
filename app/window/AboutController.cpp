#include "app/window/AboutController.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/services/Workspace.h"
#include "platform/desktop/settings/Bindings.h"
#include "shared/Library/Extras/QKWebsite.h"
#include "ui_About.h"

#include <QApplication>
#include <QScreen>

namespace
{

constexpr auto mailAddress = QLatin1String("mailto:info@parcelo.example");
constexpr int iconSize = 96;

} // namespace

AboutController::AboutController()
    : AboutController(noProduct)
{
}

AboutController::AboutController(std::int32_t productId)
    : _productId(productId)
{
}

AboutController::~AboutController() = default;

void AboutController::_loadWindow()
{
    _window = std::make_unique<QDialog>();
    Ui::About about;
    about.setupUi(_window.get());
    Bindings::bindAll(_window.get(), this);
    about.iconLabel->setPixmap(QApplication::windowIcon().pixmap(iconSize));
    connect(about.sendMail, &QPushButton::clicked, this, [this] { sendMail(sender()); });
    connect(about.visitWebsite, &QPushButton::clicked, this, [this] { visitWebsite(sender()); });
    connect(about.visitCommentPage, &QPushButton::clicked, this,
        [this] { visitCommentPage(sender()); });
}

void AboutController::showWindow(QObject* /*sender*/)
{
    if (!_window)
        _loadWindow();
    _window->adjustSize();
    const QRect screen = _window->screen()->availableGeometry();
    _window->move(screen.center() - _window->rect().center());
    _window->show();
    _window->raise();
    _window->activateWindow();
    _window->setFocusPolicy(Qt::ClickFocus); // takes the focus from its buttons
    _window->setFocus();
}

QString AboutController::appNameAndVersion()
{
    const auto information
        = [](const char* key) { return Bundle::main().stringForInfoDictionaryKey(key); };
    return QString::fromStdString(
        information("CFBundleExecutable") + " " + information("CFBundleVersion"));
}

void AboutController::sendMail(QObject* /*sender*/)
{
    Workspace::sharedWorkspace().openURL(QUrl(mailAddress));
}

void AboutController::visitWebsite(QObject* /*sender*/)
{
    Workspace::sharedWorkspace().openURL(QUrl(QLatin1String(PARCELO_SITE)));
}

void AboutController::visitCommentPage(QObject* /*sender*/)
{
    QKWebsite::visitMUForProductId(_productId);
}
