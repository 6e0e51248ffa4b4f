#include "app/window/WindowedProgram.h"

#include "app/job/DocumentPath.h"
#include "app/window/AppController.h"
#include "app/window/MainInterface.h"
#include "app/window/Translations.h"
#include "platform/base/bundle/Bundle.h"
#include "platform/base/process/InterruptSignals.h"
#include "platform/desktop/panels/AlertPanelWindow.h"
#include "platform/desktop/services/MainQueueTimers.h"
#include "platform/desktop/services/PathText.h"
#include "shared/Library/Extras/QKUtility.h"

#include <QApplication>
#include <QIcon>
#include <QSocketNotifier>

#include <cstdlib>
#include <iostream>

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

void openDocuments(const std::vector<fs::path>& files, AppController& controller)
{
    std::vector<fs::path> notThere;
    for (const fs::path& file : files) {
        std::error_code missing;
        const fs::path document = documentPath(file, missing);
        if (!missing && fs::exists(fs::symlink_status(document, missing)))
            controller.applicationOpenFile(document);
        else {
            std::cerr << "parcelo: '" << file.native() << "': " << missing.message() << "\n";
            notThere.push_back(file);
        }
    }
    if (!notThere.empty())
        controller.couldNotOpen(notThere);
}

} // namespace

int WindowedProgram::run(char* programName, const std::vector<fs::path>& files)
{
    if (!hasDisplay()) {
        std::cerr << "parcelo: there is no display to open the window on; give --to FOLDER\n";
        return EXIT_FAILURE;
    }
    InterruptSignals signals; // before Qt starts threads

    int argumentCount = 1; // ours are no arguments of Qt's
    char* arguments[] = {programName, nullptr};
    QApplication application(argumentCount, arguments);
    describe(application);
    const Translations translations;
    const MainQueueTimers mainQueue;
    AlertPanelWindow::presentAlerts();

    AppController controller;
    MainInterface interface(controller);
    QKUtility::setTerminator([&controller] { controller.terminate(nullptr); });
    // quit() would ask the windows first, and the progress sheet does not close.
    QObject::connect(&controller, &AppController::terminated, &application,
        [] { QCoreApplication::exit(EXIT_SUCCESS); });
    QSocketNotifier interrupted(signals.descriptor(), QSocketNotifier::Read);
    QObject::connect(&interrupted, &QSocketNotifier::activated, &controller, [&] {
        if (signals.take())
            controller.terminateNow();
    });
    openDocuments(files, controller);
    interface.window().show();
    controller.applicationDidFinishLaunching();
    const int status = QApplication::exec();
    QKUtility::setTerminator([] { QCoreApplication::exit(); });
    return status;
}
