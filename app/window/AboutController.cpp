#include "app/window/AboutController.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/panels/FontScale.h"
#include "platform/desktop/services/Workspace.h"
#include "platform/desktop/settings/Bindings.h"
#include "shared/Library/Extras/QKWebsite.h"
#include "ui_About.h"

#include <QApplication>
#include <QScreen>

#include <algorithm>

namespace
{

constexpr auto mailAddress = QLatin1String("mailto:info@parcelo.example");
constexpr int iconSize = 96;
constexpr int headingSize = 21; // beside letters of the usual size

} // namespace

AboutController::AboutController()
    : AboutController(noProduct)
{
}

AboutController::AboutController(std::int32_t productId)
    : _productId(productId)
{
}

AboutController::~AboutController()
{
    delete _window;
}

void AboutController::_loadWindow()
{
    _window = new QDialog(_mainWindow);
    Ui::About about;
    about.setupUi(_window);
    Bindings::bindAll(_window, this);
    QFont heading = about.appNameAndVersion->font();
    heading.setPixelSize(qRound(headingSize * FontScale::of(*_window)));
    heading.setBold(true);
    about.appNameAndVersion->setFont(heading);
    about.librariesLabel->setText(about.librariesLabel->text().arg(
        QStringLiteral("Qt %1\u00A0(LGPL\u00A03), libplist\u00A0(LGPL\u00A02.1), "
                       "libdeflate\u00A0(MIT)") // each beside its licence
            .arg(QLatin1String(qVersion()))));
    about.creditsView->setAccessibleName(about.creditsView->toPlainText());
    _window->setAccessibleDescription(QStringList{
        about.creditsView->toPlainText(), about.licenceLabel->text(), about.librariesLabel->text()}
                                          .join(QLatin1Char('\n')));
    about.iconLabel->setPixmap(QApplication::windowIcon().pixmap(iconSize));
    connect(about.closeButton, &QPushButton::clicked, _window, &QDialog::close);
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
    _window->move(_place());
    _window->show();
    _window->raise();
    _window->activateWindow();
    _window->setFocusPolicy(Qt::ClickFocus); // takes the focus from its buttons
    _window->setFocus();
}

QPoint AboutController::_place() const
{
    const QWidget* over = _mainWindow ? _mainWindow.data() : _window.data();
    const QRect screen = over->screen()->availableGeometry();
    const QRect place = _mainWindow ? _mainWindow->frameGeometry() : screen;
    const QPoint last = screen.bottomRight() - _window->rect().bottomRight();
    const QPoint wanted = place.center() - _window->rect().center();
    return {std::max(screen.left(), std::min(wanted.x(), last.x())),
        std::max(screen.top(), std::min(wanted.y(), last.y()))};
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
