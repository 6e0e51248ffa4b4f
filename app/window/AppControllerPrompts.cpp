// Updates, prompts and links.

#include "app/window/AboutController.h"
#include "app/window/AdvertTextView.h"
#include "app/window/AppController.h"
#include "app/window/PreferenceController.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/panels/Tag.h"
#include "platform/desktop/services/Workspace.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "platform/desktop/updates/SUUpdater.h"
#include "shared/Library/Extras/QKWebsite.h"
#include "shared/Library/Extras/QKWindow.h"

#include <QDateTime>
#include <QStandardPaths>

#include <array>
#include <cmath>
#include <map>

namespace
{

constexpr std::int32_t ownProduct = 22;
constexpr double updateRetryDelay = 2.0; // seconds

// What the advert shows; our own product is not among it.
constexpr std::array<std::int32_t, 7> advertised{0, 1, 2, 3, 4, 21, 20};

QDateTime referenceDate()
{
    return {QDate(2001, 1, 1), QTime(0, 0), Qt::UTC};
}

// The sibling product keeps its settings where ours are kept.
bool hasSendora()
{
    return !QStandardPaths::locate(
        QStandardPaths::GenericConfigLocation, QStringLiteral("sendora/sendora.conf"))
                .isEmpty();
}

} // namespace

// A question that is asked until it gets an answer for good, which switches off its defaults key.
// The first button opens a page.
struct AppController::Prompt {
    QString key;
    QString title;
    QString message;
    QString defaultButton;
    QString alternateButton;
    QString otherButton;
    QString page;
};

void AppController::_runPrompt(const Prompt& prompt)
{
    const int result = _interface.mainWindow->runPromptSheetWithTitle(prompt.title, prompt.message,
        prompt.defaultButton, prompt.alternateButton, prompt.otherButton);
    if (result == PromptResultDefault)
        QKWebsite::visitPage(prompt.page);
    if (result != PromptResultAlternate)
        UserDefaults::standardUserDefaults().setBool(false, prompt.key);
}

SUUpdater& AppController::updater()
{
    if (!_updater) {
        auto& defaults = UserDefaults::standardUserDefaults();
        _updater = std::make_unique<SUUpdater>(SUUpdater::Defaults{
            .objectForKey = [&](const QString& key) { return defaults.objectForKey(key); },
            .setObject = [&](const QString& key,
                             const QVariant& object) { defaults.setObject(object, key); }});
        _updater->setParentWindow(_interface.mainWindow);
    }
    return *_updater;
}

void AppController::checkForUpdates(QObject* sender)
{
    updater().checkForUpdates(sender);
}

void AppController::checkForUpdatesInBackground()
{
    if (Sheets::attachedSheet(_interface.mainWindow) == nullptr)
        updater().checkForUpdatesInBackground();
    else
        _afterDelay(updateRetryDelay, [this] { checkForUpdatesInBackgroundLastAttempt(); });
}

void AppController::checkForUpdatesInBackgroundLastAttempt()
{
    if (Sheets::attachedSheet(_interface.mainWindow) == nullptr)
        updater().checkForUpdatesInBackground();
}

void AppController::sellSendora()
{
    sellSendora(QDateTime::currentDateTime());
}

void AppController::sellSendora(const QDateTime& now)
{
    const QString key = QStringLiteral("SellSendora");
    if (hasSendora() || !UserDefaults::standardUserDefaults().boolForKey(key))
        return;
    const QString message = tr(
        "If you enjoy the way Parcelo makes it easy to zip and email files in one step, you will "
        "love Sendora.\n\nSendora combines the drag-and-drop simplicity of Parcelo with the "
        "ability "
        "to send large files.");
    // Shown as it is, with both percent signs; and the offer ends two days before it says so. Both
    // are intended.
    const QString specialOffer = tr(
        "\n\nFor a limited time, apply coupon code 'KVW5' (write this down!) during checkout to "
        "receive a 30%% discount on Sendora.\n\nHurry! Offer expires Oct 31, 2010.");
    const bool isSpecial = QDate(2010, 10, 29).startOfDay() > now;
    _runPrompt({.key = key,
        .title = isSpecial ? tr("Sendora Special Offer") : tr("Sendora"),
        .message = isSpecial ? message + specialOffer : message,
        .defaultButton = tr("Learn More"),
        .alternateButton = tr("Maybe Next Time"),
        .otherButton = tr("Don't Ask Again"),
        .page = QStringLiteral("sendora/?kvw5")});
}

void AppController::runShareOnFacebookSheet()
{
    const QString key = QStringLiteral("AskToShareOnFacebook");
    if (!UserDefaults::standardUserDefaults().boolForKey(key)
        || Sheets::attachedSheet(_interface.mainWindow) != nullptr)
        return;
    _runPrompt({.key = key,
        .title = tr("Share on Facebook"),
        .message = tr("As an independent developer, our single greatest challenge is getting the "
                      "word out.  Please consider taking a minute to share %1 on your Facebook and "
                      "help spread the word.\n\nThank you!")
                       .arg(appName()),
        .defaultButton = tr("Share on Facebook"),
        .alternateButton = tr("Maybe next time"),
        .otherButton = tr("Don't ask again"),
        .page = appName().toLower() + QLatin1String("/fb/")});
}

void AppController::runRateOnAppStoreSheet()
{
    const QString key = QStringLiteral("AskToRateOnAppStore");
    if (!UserDefaults::standardUserDefaults().boolForKey(key)
        || Sheets::attachedSheet(_interface.mainWindow) != nullptr)
        return;
    _runPrompt({.key = key,
        .title = tr("We Need Your Help!"),
        .message = tr("As an indie developer, our biggest challenge is getting the word out.  "
                      "Please take a minute to rate %1 on the App Store and help spread the word."
                      "\n\nThank you!")
                       .arg(appName()),
        .defaultButton = tr("Rate %1").arg(appName()),
        .alternateButton = tr("Maybe next time"),
        .otherButton = tr("Don't ask again"),
        .page = appName().toLower() + QLatin1String("/mas/")});
}

void AppController::showHelp(QObject* /*sender*/)
{
    Workspace::sharedWorkspace().openURL(QUrl(QLatin1String(PARCELO_SITE "parcelo/help.html")));
}

void AppController::visitWebsite(QObject* sender)
{
    static const std::map<int, QString> pages{
        {1, QStringLiteral("forum/")},
        {2, QStringLiteral("parcelo/fb/")},
        {3, QStringLiteral("parcelo/mu/")},
    };
    const int tag = Tag::of(sender);
    if (const auto page = pages.find(tag); page != pages.end())
        QKWebsite::visitPage(page->second);
    else if (tag == 0)
        QKWebsite::visitHomePage();
}

void AppController::visitShop(QObject* /*sender*/)
{
    QKWebsite::visitPage(QStringLiteral("shop/"));
}

void AppController::showAbout(QObject* /*sender*/)
{
    if (!_aboutController)
        _aboutController = std::make_unique<AboutController>(ownProduct);
    _aboutController->setMainWindow(_interface.mainWindow);
    _aboutController->showWindow(this);
}

void AppController::showPreference(QObject* /*sender*/)
{
    _preferenceController->showWindow(_interface.mainWindow);
}

void AppController::preferenceDidChange()
{
    const bool isShown
        = !UserDefaults::standardUserDefaults().boolForKey(QStringLiteral("HideAdvert"));
    _interface.advertTextView->setVisible(isShown);
    _interface.advertTextView->parentWidget()->setVisible(isShown); // the bar it stands on
}

std::int32_t AppController::randomProductId()
{
    return randomProductId(
        static_cast<double>(referenceDate().msecsTo(QDateTime::currentDateTimeUtc())) / 1000);
}

std::int32_t AppController::randomProductId(double secondsSinceReferenceDate)
{
    // What does not fit, from 2069 on, wraps.
    const auto seconds
        = static_cast<std::int32_t>(static_cast<std::int64_t>(secondsSinceReferenceDate));
    const std::int32_t remainder = seconds % static_cast<std::int32_t>(advertised.size());
    return remainder < 0 ? 0 : advertised.at(static_cast<std::size_t>(remainder));
}
