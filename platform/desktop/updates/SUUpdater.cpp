#include "platform/desktop/updates/SUUpdater.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/updates/HTMLText.h"
#include "platform/desktop/updates/UpdateSheet.h"
#include "system/ReferenceDate.h"

#include <QApplication>
#include <QWindow>

#include <utility>

namespace
{

constexpr std::chrono::seconds timeBetweenChecks = std::chrono::hours(24);
constexpr std::chrono::seconds retryDelay(2);

const QString feedKey = QStringLiteral("SUFeedURL");
const QString lastCheckKey = QStringLiteral("SULastCheckTime");

std::chrono::seconds now()
{
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::floor<std::chrono::seconds>(sinceEpoch)
        - std::chrono::seconds(referenceDateInUnixSeconds);
}

// A feed may name any address; those of the web are opened and no others.
QUrl webAddress(const QString& text)
{
    const QUrl url(text, QUrl::StrictMode);
    const bool isOfTheWeb = url.scheme() == u"http" || url.scheme() == u"https";
    return isOfTheWeb && !url.host().isEmpty() ? url : QUrl();
}

QString hostVersion()
{
    return QCoreApplication::applicationVersion();
}

// By the system's package, whose file this is; then the system brings what is newer, too.
bool isPackaged()
{
    return Bundle::main().pathForResource("packaged").has_value();
}

UpdateSheet::Offer offerFor(const AppcastReader::Item& item)
{
    const QUrl page = webAddress(item.link);
    return {.version = item.shortVersionString.isEmpty() ? item.version : item.shortVersionString,
        .hostVersion = hostVersion(),
        .whatIsNew = HTMLText::plainText(item.description),
        .notesPage = webAddress(item.releaseNotesLink),
        .page = page.isValid() ? page : webAddress(item.enclosureURL),
        .isCritical = item.isCritical};
}

} // namespace

SUUpdater::SUUpdater(Defaults defaults, std::chrono::milliseconds timeout)
    : _defaults(std::move(defaults))
    , _download(AppcastReader::largestFeedInBytes, timeout)
{
    _retry.setSingleShot(true);
    _retry.setInterval(retryDelay);
    connect(&_retry, &QTimer::timeout, this, &SUUpdater::_finish);
}

void SUUpdater::checkForUpdates(QObject* /*sender*/)
{
    if (_sheet) {
        _sheet->raise();
        _sheet->activateWindow();
        return;
    }
    if (isPackaged()) {
        _show(UpdateSheet::message(tr("Updates come with your system's software."),
            tr("You have version %1.").arg(hostVersion()), _parentWindow));
        return;
    }
    _isAsked = true; // a check in the background that is under way answers now
    if (!_download.isRunning())
        _start();
}

void SUUpdater::checkForUpdatesInBackground()
{
    if (isPackaged() || _sheet || _download.isRunning() || _retry.isActive() || !_isDue())
        return;
    _isAsked = false;
    _start();
}

// A last check that is still to come is a clock that was wrong.
bool SUUpdater::_isDue() const
{
    const std::chrono::seconds passed
        = now() - std::chrono::seconds(_defaults.objectForKey(lastCheckKey).toLongLong());
    return passed >= timeBetweenChecks || passed < std::chrono::seconds::zero();
}

void SUUpdater::_start()
{
    _retry.stop();
    const QUrl url = webAddress(_defaults.objectForKey(feedKey).toString());
    if (url.isValid())
        _download.start(url, [this](const FeedDownload::Result& result) {
            _result = result;
            _finish();
        });
    else
        _tellProblem(tr("No address is set at which to look for new versions."));
}

// A sheet finds its place only on a window that has one.
bool SUUpdater::_canTell() const
{
    const QWindow* window = _parentWindow ? _parentWindow->windowHandle() : nullptr;
    const bool isOnScreen = !_parentWindow || (window && window->isExposed());
    return isOnScreen && !QApplication::activeModalWidget()
        && !(_parentWindow && Sheets::attachedSheet(_parentWindow));
}

void SUUpdater::_finish()
{
    if (!_isAsked && !_canTell()) {
        _retry.start(); // nothing is told, so nothing counts as checked
        return;
    }
    const FeedDownload::Result result = std::exchange(_result, {});
    if (result.isAnswered)
        _defaults.setObject(lastCheckKey, QVariant::fromValue<qlonglong>(now().count()));
    if (!result.problem.isEmpty()) {
        _tellProblem(result.problem);
        return;
    }
    if (const auto items = AppcastReader::read(result.bytes))
        _tell(AppcastReader::newestItem(*items));
    else
        _tellProblem(tr("The list of versions cannot be read."));
}

void SUUpdater::_tell(const AppcastReader::Item* newest)
{
    if (newest && AppcastReader::compareVersions(newest->version, hostVersion()) > 0)
        _show(new UpdateSheet(offerFor(*newest), _parentWindow));
    else if (_isAsked)
        _show(UpdateSheet::message(tr("%1 is up to date.").arg(QLatin1String(Bundle::name)),
            tr("You have version %1, and there is none that is newer.").arg(hostVersion()),
            _parentWindow));
}

void SUUpdater::_tellProblem(const QString& problem)
{
    if (_isAsked)
        _show(UpdateSheet::message(
            tr("It was not possible to look for new versions."), problem, _parentWindow));
}

void SUUpdater::_show(QDialog* sheet)
{
    _sheet = sheet;
    Sheets::begin(sheet, _parentWindow);
}
