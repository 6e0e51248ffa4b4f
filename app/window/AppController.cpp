// Settings, start-up and shut-down.

#include "app/window/AppController.h"

#include "app/window/AboutController.h"
#include "app/window/AdvertTextView.h"
#include "app/window/DropView.h"
#include "app/window/JobAttention.h"
#include "app/window/PreferenceController.h"
#include "app/window/ProgressSheet.h"
#include "platform/base/bundle/Bundle.h"
#include "platform/base/files/FileTree.h"
#include "platform/base/files/ScratchFolder.h"
#include "platform/base/files/SearchPaths.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "platform/desktop/updates/SUUpdater.h"
#include "shared/Library/Extras/FileManagerExtras.h"
#include "shared/Library/Extras/QKUtility.h"
#include "shared/Library/Extras/QKWindow.h"
#include "shared/Library/Extras/UserDefaultsExtras.h"

#include <QApplication>
#include <QDialog>
#include <QMenuBar>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace
{

constexpr auto title = QLatin1String("Parcelo");
constexpr auto titleTime = 5s;
constexpr std::chrono::duration<double> interruptInterval = 50ms;
constexpr auto updaterSwitch = QLatin1String("SUCheckAtStartup");

// The feed for a system: the first row that the version reaches.
struct Feed {
    std::int32_t fromVersion;
    QLatin1String file;
};
constexpr Feed feeds[] = {
    {0x1080, QLatin1String("appcast-108.xml")},
    {0x1070, QLatin1String("appcast-107.xml")},
    {0x1060, QLatin1String("appcast-106.xml")},
};

QString feedAddress()
{
    const auto feed = std::ranges::find_if(
        feeds, [](const Feed& each) { return QKUtility::systemVersion() >= each.fromVersion; });
    return QLatin1String(PARCELO_SITE "parcelo/")
        + (feed == std::end(feeds) ? QLatin1String("appcast.xml") : feed->file);
}

// Takes over the choice that was made for the updater itself, whose own check stays off.
void migrateUpdaterSwitch(const QString& toKey)
{
    auto& defaults = UserDefaults::standardUserDefaults();
    if (defaults.boolForKey(updaterSwitch))
        defaults.setBool(true, toKey);
    defaults.setBool(false, updaterSwitch);
}

AppController::Path ownWorkingFolder(const std::string& bundleIdentifier)
{
    return "/tmp/" + bundleIdentifier + "-" + std::to_string(::getpid());
}

} // namespace

AppController::AppController()
    : _preferenceController(std::make_unique<PreferenceController>())
{
    // Made and let go at once, which is intended.
    (void)std::make_unique<AdvertTextView>();
    (void)std::make_unique<QKWindow>();

    migrateUpdaterSwitch(QStringLiteral("CheckAtStartup")); // only a choice that was stored counts
    UserDefaultsExtras::registerDefaultsWithResource(
        UserDefaults::standardUserDefaults(), QStringLiteral("FactoryDefaults"));
    UserDefaults::standardUserDefaults().setObject(feedAddress(), QStringLiteral("SUFeedURL"));
    connect(_preferenceController.get(), &PreferenceController::sheetEnded, this,
        &AppController::preferenceDidChange);
}

AppController::~AppController()
{
    while (_job && _worker.wait_for(interruptInterval) != std::future_status::ready)
        _job->abandon();
}

void AppController::awakeFromNib(const Interface& interface)
{
    _interface = interface;
    _attention = std::make_unique<JobAttention>(
        *_interface.mainWindow, *_interface.progress, JobAttention::Thresholds{});
    connect(_attention.get(), &JobAttention::windowWanted, this, &AppController::windowWanted);
    _interface.destinationPop->setAutoenablesItems(true);
    _followSettings();
    setupDestinations();
    _interface.mainWindow->setFrameAutosaveName(QStringLiteral("MainWindowAutosave"));
    _interface.advertTextView->setShortVersion(true);
    _interface.advertTextView->setProductId(randomProductId());
    _hearDesktop();
}

void AppController::applicationDidFinishLaunching()
{
    _interface.mainWindow->setTitle(title);
    clearWindowTitle(nullptr);
    preferenceDidChange();
    const auto& defaults = UserDefaults::standardUserDefaults();
    if (defaults.boolForKey(QStringLiteral("AutoQuit")))
        _shouldAutoQuit = _dockDropCount > 0;
    incrementRunCount();
    QMenuBar* menu = _interface.mainMenu;
    menu->removeAction(menu->actions().value(1));
    if (defaults.boolForKey(QStringLiteral("CheckAtStartup")))
        checkForUpdatesInBackground();
}

void AppController::_afterDelay(double seconds, std::function<void()> runBlock)
{
    QKUtility::afterDelay(seconds, [self = QPointer(this), block = std::move(runBlock)] {
        if (self)
            block();
    });
}

bool AppController::windowShouldClose(QObject* sender)
{
    // Hidden means minimized here: nothing else would bring the window back.
    if (UserDefaults::standardUserDefaults().boolForKey(QStringLiteral("StayRunningOnWindowClose")))
        _interface.mainWindow->showMinimized();
    else
        terminate(sender);
    return false;
}

void AppController::terminate(QObject* /*sender*/)
{
    if (_mayStopJob() && _mayForgetWaiting() && _mayLeaveMessages())
        terminateNow();
}

// Escape and a closed question keep going.
bool AppController::_mayStopJob()
{
    if (!_job || _isTerminating)
        return true;
    if (QApplication::activeModalWidget() != nullptr)
        return false; // one question at a time
    _interface.mainWindow->setWindowState(
        _interface.mainWindow->windowState() & ~Qt::WindowMinimized);
    return _interface.mainWindow->runPromptSheetWithTitle(tr("An archive is being made"),
               tr("If you quit now, it will not be made. Your files stay as they are."),
               tr("&Keep Going"), {}, tr("&Stop and Quit"))
        == PromptResultOther;
}

// While a job ends the event loop goes on, so that no question of a block that is still waiting can
// keep the program.
void AppController::terminateNow()
{
    if (std::exchange(_isTerminating, true))
        return;
    Q_EMIT terminating();
    _forgetWaiting();
    if (_job) {
        // Windows that no longer answer would look like a hang.
        _interface.progressWindow->hide();
        _interface.mainWindow->hide();
    }
    _terminateWhenIdle();
}

// A tool may need several interrupts, and one may fall between two tools.
void AppController::_terminateWhenIdle()
{
    if (_job) {
        _job->abandon();
        if (_worker.wait_for(0s) != std::future_status::ready) {
            _afterDelay(interruptInterval.count(), [this] { _terminateWhenIdle(); });
            return;
        }
    }
    applicationShouldTerminate();
    Q_EMIT terminated();
}

// A process that never mailed an archive makes the folder here and removes it, which is intended.
void AppController::applicationShouldTerminate()
{
    (void)FileTree::remove(tmpFolder());
}

QString AppController::appName()
{
    return QString::fromStdString(Bundle::main().stringForInfoDictionaryKey("CFBundleName"));
}

QString AppController::bundleIdentifier()
{
    return QString::fromStdString(Bundle::main().stringForInfoDictionaryKey("CFBundleIdentifier"));
}

int AppController::runCount()
{
    const QString key = QStringLiteral("R232");
    if (_runCount < 0) {
        auto& defaults = UserDefaults::standardUserDefaults();
        constexpr qint64 last = std::numeric_limits<std::int32_t>::max() - 1;
        _runCount = static_cast<std::int32_t>(
            std::clamp<qint64>(defaults.integerForKey(key), 0, last) + 1);
        defaults.setInteger(_runCount, key);
    }
    return _runCount;
}

// The run count does not advance at launch.
void AppController::incrementRunCount() { }

void AppController::incrementUsageCount()
{
    UserDefaultsExtras::incrementIntegerForKey(
        UserDefaults::standardUserDefaults(), QStringLiteral("UsageCount"));
}

void AppController::migrateCheckAtStartup()
{
    migrateUpdaterSwitch(QStringLiteral("QKCheckAtStartup"));
}

const AppController::Path& AppController::tmpFolder()
{
    if (!_tmpFolder) {
        _tmpFolder = SearchPaths::temporaryDirectory()
            / (appName().toStdString() + "_" + std::to_string(::getpid()));
        ::mkdir(_tmpFolder->c_str(), 0700); // may be left by a program of the same number
        _tmpFolderHold = ScratchFolder::hold(*_tmpFolder);
        if (std::string other = _tmpFolder->native() + "-XXXXXX"; !_tmpFolderHold) {
            // Somebody else has that place. A failure shows when an archive is made there.
            if (::mkdtemp(other.data()) != nullptr)
                _tmpFolder = other;
        }
    }
    return *_tmpFolder;
}

const AppController::Path& AppController::tmpdirString()
{
    if (!_tmpdirString) {
        const std::string identifier = bundleIdentifier().toStdString();
        const auto folder = SearchPaths::userTemporaryDirectory();
        if (!folder)
            _tmpdirString = ownWorkingFolder(identifier);
        else
            _tmpdirString = folder->filename() == identifier ? *folder : *folder / identifier;
    }
    return *_tmpdirString;
}

// Held as long as the program runs: another program of ours, or one that tidies up, keeps away.
std::optional<AppController::Path> AppController::tmpdir()
{
    if (_tmpdirHold)
        return _tmpdirString;
    const auto take = [this](const Path& path) {
        ::mkdir(path.c_str(), 0700); // may be there
        _tmpdirHold = ScratchFolder::hold(path);
        if (_tmpdirHold && path != SearchPaths::temporaryDirectory())
            ScratchFolder::empty(path);
        return static_cast<bool>(_tmpdirHold);
    };
    ScratchFolder::removeStaleFolders("/tmp");
    if (take(tmpdirString()))
        return _tmpdirString;
    // Two programs at work in one folder would take each other's archives.
    if (const Path own = ownWorkingFolder(bundleIdentifier().toStdString()); take(own))
        return _tmpdirString = own;
    return std::nullopt;
}

QString AppController::_tmpdirText()
{
    return PathText::textOf(tmpdir().value_or(Path()));
}

QString AppController::_appSupportPathText()
{
    return PathText::textOf(appSupportPath().value_or(Path()));
}

bool AppController::cleanupTmpdir()
{
    std::error_code missing;
    return !fs::exists(tmpdirString(), missing) || !FileTree::remove(tmpdirString());
}

std::optional<AppController::Path> AppController::appSupportPath()
{
    if (!_appSupportPath)
        _appSupportPath
            = FileManagerExtras::findOrCreateDirectory(SearchPaths::Directory::applicationSupport,
                SearchPaths::DomainMask::user, bundleIdentifier().toStdString());
    return _appSupportPath;
}

void AppController::clearWindowTitle(QObject* sender)
{
    if (sender != nullptr) {
        _interface.mainWindow->setTitle(title);
        return;
    }
    auto* timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this, timer] {
        clearWindowTitle(timer);
        timer->deleteLater();
    });
    timer->start(titleTime);
}
