#include "tests/window/Program.h"

#include "platform/desktop/panels/AlertPanelWindow.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/settings/UserDefaults.h"

#include <QDeadlineTimer>
#include <QTest>
#include <QTimer>

#include <memory>

void Program::SetUp()
{
    AlertPanelWindow::presentAlerts();
    Workspace::setSharedWorkspace(&workspace);
    MailComposer::setSharedComposer(&composer);
    UserDefaults::setStandardUserDefaults(
        std::make_unique<UserDefaults>(folder.path() / ("settings" + std::to_string(++_worlds))));
}

void Program::TearDown()
{
    if (_controller)
        (void)_controller->applicationShouldTerminate(); // removes what it has made
    _interface.reset();
    _controller.reset();
    Workspace::setSharedWorkspace(nullptr);
    MailComposer::setSharedComposer(nullptr);
}

void Program::start(
    const std::map<QString, QVariant>& stored, const std::vector<std::filesystem::path>& files)
{
    for (const auto& [key, value] : stored)
        UserDefaults::standardUserDefaults().setObject(value, key);
    _controller = std::make_unique<AppController>();
    _interface = std::make_unique<MainInterface>(*_controller);
    for (const auto& file : files)
        _controller->applicationOpenFile(file);
    window().show();
    _controller->applicationDidFinishLaunching();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window()));
}

bool Program::waitFor(const std::function<bool()>& condition)
{
    constexpr int longestInMilliseconds = 20000;
    return QTest::qWaitFor(condition, longestInMilliseconds);
}

void Program::serveEventsFor(int milliseconds)
{
    QTest::qWait(milliseconds);
}

void Program::whenSheetIsUp(const std::function<void(QDialog*)>& action)
{
    QTimer::singleShot(10, &window(), [this, action] {
        if (QDialog* sheet = Sheets::attachedSheet(&window()))
            action(sheet);
        else
            whenSheetIsUp(action);
    });
}
