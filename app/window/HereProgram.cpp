#include "app/window/HereProgram.h"

#include "app/window/HereJob.h"
#include "app/window/Translations.h"
#include "platform/base/process/EarlyExit.h"
#include "platform/base/process/InterruptSignals.h"
#include "platform/desktop/services/MainQueueTimers.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "shared/Library/Extras/UserDefaultsExtras.h"

#include <QCoreApplication>
#include <QSocketNotifier>

int HereProgram::run(char* programName, const std::vector<std::filesystem::path>& files)
{
    EarlyExit starter; // before there are threads
    InterruptSignals signals; // likewise
    int argumentCount = 1; // ours are no arguments of Qt's
    char* arguments[] = {programName, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    UserDefaultsExtras::registerDefaultsWithResource(
        UserDefaults::standardUserDefaults(), QStringLiteral("FactoryDefaults"));
    const Translations translations;
    const MainQueueTimers mainQueue;

    HereJob job(files, {});
    QSocketNotifier interrupted(signals.descriptor(), QSocketNotifier::Read);
    QObject::connect(&interrupted, &QSocketNotifier::activated, &job, [&] {
        if (signals.take())
            job.stop();
    });
    int status = EXIT_FAILURE;
    QObject::connect(&job, &HereJob::ended, &job, [&](int atEnd) {
        status = atEnd;
        starter.leave(status);
    });
    QObject::connect(
        &job, &HereJob::finished, &application, [&] { QCoreApplication::exit(status); });
    job.start();
    return QCoreApplication::exec();
}
