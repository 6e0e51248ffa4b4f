#include "app/window/WindowedProgram.h"

#include "app/job/DocumentPath.h"
#include "app/job/StandardReport.h"
#include "app/window/AppController.h"
#include "app/window/MainInterface.h"
#include "app/window/Translations.h"
#include "platform/base/bundle/Bundle.h"
#include "platform/base/process/InterruptSignals.h"
#include "platform/desktop/panels/AlertPanelWindow.h"
#include "platform/desktop/services/ApplicationService.h"
#include "platform/desktop/services/MainQueueTimers.h"
#include "platform/desktop/services/PathText.h"
#include "platform/desktop/services/StartupNotification.h"
#include "shared/Library/Extras/QKUtility.h"

#include <QApplication>
#include <QIcon>
#include <QSocketNotifier>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <utility>

namespace fs = std::filesystem;

namespace
{

bool hasDisplay()
{
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0')
            return true;
    return false;
}

void describe(QApplication& application)
{
    application.setApplicationName(QStringLiteral("parcelo"));
    application.setApplicationVersion(QStringLiteral(PARCELO_VERSION));
    application.setDesktopFileName(QStringLiteral("org.parcelo.Parcelo"));
    application.setQuitOnLastWindowClosed(false); // closing the window is the controller's to judge
    // Looking through the icon themes would take a fifth of the start.
    const auto icon = Bundle::main().pathForResource("org.parcelo.Parcelo", "png");
    application.setWindowIcon(icon ? QIcon(PathText::textOf(*icon))
                                   : QIcon::fromTheme(QStringLiteral("org.parcelo.Parcelo")));
}

constexpr auto emailAction = QLatin1String("email");
constexpr auto preferencesAction = QLatin1String("preferences");
constexpr auto chooseAction = QLatin1String("choose-files");
constexpr auto serviceOption = "--gapplication-service";

// For the call on account of which the bus has started this program.
constexpr double patienceOfService = 10; // seconds

// Whoever starts this program gives it these, for itself alone.
QByteArray takeActivationToken()
{
    QByteArray token;
    for (const char* variable : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
        if (token.isEmpty())
            token = qgetenv(variable);
        ::unsetenv(variable); // NOLINT(concurrency-mt-unsafe): no thread has been started yet
    }
    return token;
}

ApplicationService::Request requestOf(const WindowedProgram::Start& start)
{
    ApplicationService::Request request{.activationToken = takeActivationToken()};
    if (start.option == "--email")
        request.action = emailAction;
    else if (start.option == "--preferences")
        request.action = preferencesAction;
    for (const fs::path& file : start.files) {
        std::error_code missing;
        if (isAddress(file)) {
            request.addAddress(QString::fromStdString(file.native()));
            continue;
        }
        const fs::path document = documentPath(file, missing);
        request.files.push_back(missing ? fs::absolute(file, missing) : document);
    }
    return request;
}

// What a start of the program, or a launcher, asks for: the window comes to the front, and does it.
class Requests
{
public:
    Requests(AppController& controller, QWidget& window)
        : _controller(controller)
        , _window(window)
    {
    }

    [[nodiscard]] bool areNone() const { return !_isLaunched; }
    void take(const ApplicationService::Request& request);

private:
    void _open(const ApplicationService::Request& request);
    void _comeToFront(const QByteArray& activationToken);

    AppController& _controller;
    QWidget& _window;
    bool _isLaunched = false;
};

// Files of the first one are there before launching has ended, as the controller wants them.
void Requests::take(const ApplicationService::Request& request)
{
    _open(request);
    _comeToFront(request.activationToken);
    if (!std::exchange(_isLaunched, true))
        _controller.applicationDidFinishLaunching();
    if (QApplication::activeModalWidget() != nullptr || !_controller.acceptsFiles())
        return; // one question at a time
    if (request.action == preferencesAction)
        _controller.showPreference(nullptr);
    else if (request.action == chooseAction)
        _controller.chooseFiles(nullptr);
    else if (request.action == emailAction && request.files.empty() && request.refused.empty())
        _controller.chooseFilesForEmail();
}

void Requests::_open(const ApplicationService::Request& request)
{
    AppController::Documents documents{.forEmail = request.action == emailAction};
    QStringList unusable = request.refused;
    for (const fs::path& file : request.files) {
        std::error_code missing;
        if (fs::exists(fs::symlink_status(file, missing))) {
            documents.files.push_back(file);
            continue;
        }
        StandardReport::complain("'" + file.native() + "': " + missing.message());
        unusable.append(PathText::textOf(file));
    }
    if (!documents.files.empty())
        _controller.openDocuments(std::move(documents));
    if (!unusable.isEmpty())
        _controller.couldNotOpen(unusable);
}

// Wayland's plug-in takes the token out of the environment.
void Requests::_comeToFront(const QByteArray& activationToken)
{
    if (!activationToken.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", activationToken);
    _window.setWindowState(_window.windowState() & ~Qt::WindowMinimized);
    _window.show();
    _window.raise();
    // Behind a sheet the window takes no keys; activated again and again, Qt 6.4 on X11 at times
    // gives none to the sheet either.
    QWidget* const sheet = QApplication::activeModalWidget();
    QWidget* const front = sheet != nullptr ? sheet : &_window;
    front->activateWindow();
    qunsetenv("XDG_ACTIVATION_TOKEN");
    StartupNotification::complete(*front, activationToken);
}

// The session's end comes as a wish to quit that Qt would pass on to each window as a wish to
// close. Ours asks then, and nobody is there to answer.
class SessionEnd : public QObject
{
public:
    explicit SessionEnd(AppController& controller)
        : _controller(controller)
    {
        qApp->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (object != qApp || event->type() != QEvent::Quit)
            return false;
        _controller.terminateNow();
        return true;
    }

private:
    AppController& _controller;
};

} // namespace

int WindowedProgram::run(char* programName, const Start& start)
{
    if (!hasDisplay()) {
        std::cerr << "parcelo: there is no display to open the window on; give --to FOLDER\n";
        return EXIT_FAILURE;
    }
    InterruptSignals signals; // before Qt starts threads

    int argumentCount = 1; // ours are no arguments of Qt's
    char* arguments[] = {programName, nullptr};
    const ApplicationService::Request asked = requestOf(start);
    QApplication application(argumentCount, arguments);
    describe(application);
    std::unique_ptr<Requests> requests;
    ApplicationService service(QApplication::desktopFileName(),
        [&](const ApplicationService::Request& request) { requests->take(request); });
    if (service.begin(asked) == ApplicationService::Role::later)
        return EXIT_SUCCESS;

    const Translations translations;
    const MainQueueTimers mainQueue;
    AlertPanelWindow::presentAlerts();

    AppController controller;
    MainInterface interface(controller);
    QKUtility::setTerminator([&controller] { controller.terminate(nullptr); });
    QObject::connect(
        &controller, &AppController::terminating, &service, [&service] { service.leave(); });
    // quit() would ask the windows first, and the progress sheet does not close.
    QObject::connect(&controller, &AppController::terminated, &application,
        [] { QCoreApplication::exit(EXIT_SUCCESS); });
    const SessionEnd sessionEnd(controller);
    QSocketNotifier interrupted(signals.descriptor(), QSocketNotifier::Read);
    QObject::connect(&interrupted, &QSocketNotifier::activated, &controller, [&] {
        if (signals.take())
            controller.terminateNow();
    });
    requests = std::make_unique<Requests>(controller, interface.window());
    QObject::connect(&controller, &AppController::windowWanted, &application,
        [&](const QByteArray& token) { requests->take({.activationToken = token}); });
    if (start.option != serviceOption)
        requests->take(asked);
    else
        QKUtility::afterDelay(patienceOfService, [&] {
            if (requests->areNone())
                controller.terminate(nullptr);
        });
    const int status = QApplication::exec();
    QKUtility::setTerminator([] { QCoreApplication::exit(); });
    return status;
}
