#include "tests/window/Program.h"

#include "app/window/DropView.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/services/UriList.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "tests/window/Drag.h"

#include <QAbstractButton>
#include <QMessageBox>

Program::Program()
{
    AlertPanel::setPresenter([this](const AlertPanel::Alert& alert) {
        alerts.push_back(alert.message);
        return int{AlertPanel::answerDefault};
    });
}

Program::~Program()
{
    _end();
    AlertPanel::setPresenter({});
}

void Program::_end()
{
    if (_controller)
        _controller->terminate(nullptr); // removes what it has made
    _interface.reset();
    _controller.reset();
}

void Program::start(const Settings& stored, const std::vector<Path>& files)
{
    _end();
    UserDefaults::setStandardUserDefaults(
        std::make_unique<UserDefaults>(folder.path() / ("settings" + std::to_string(++_worlds))));
    for (const auto& [key, value] : stored)
        store(key, value);
    startAgain(files);
}

void Program::startAgain(const std::vector<Path>& files)
{
    _end();
    _controller = std::make_unique<AppController>();
    _interface = std::make_unique<MainInterface>(*_controller);
    _hasQuit = false;
    QObject::connect(
        _controller.get(), &AppController::terminated, &window(), [this] { _hasQuit = true; });
    for (const Path& file : files)
        _controller->applicationOpenFile(file);
    window().show();
    _controller->applicationDidFinishLaunching();
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
}

void Program::type(QKeyCombination keys)
{
    window().activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
    QTest::keyClick(&window(), keys.key(), keys.keyboardModifiers());
}

DropView& Program::box()
{
    return *find<DropView>("saveDropView");
}

std::string Program::textOf(const char* label)
{
    return find<QLabel>(label)->text().toStdString();
}

QVariant Program::stored(const char* key)
{
    return UserDefaults::standardUserDefaults().objectForKey(QLatin1String(key));
}

void Program::store(const char* key, const QVariant& value)
{
    UserDefaults::standardUserDefaults().setObject(value, QLatin1String(key));
}

void Program::drop(const std::vector<Path>& files)
{
    std::string list;
    for (const Path& file : files)
        list += UriList::fileUri(file) + "\r\n";
    Drag drag("text/uri-list", QByteArray::fromStdString(list));
    EXPECT_TRUE(drag.hover(box()));
    drag.drop(box());
}

QDialog* Program::waitForSheet(const char* objectName)
{
    QDialog* sheet = nullptr;
    const auto isUp = [&] {
        sheet = Sheets::attachedSheet(&window());
        return sheet != nullptr && sheet->objectName() == QLatin1String(objectName);
    };
    if (!waitFor(isUp))
        throw std::runtime_error(std::string("there is no sheet ") + objectName);
    return sheet;
}

void Program::endSheet(const char* objectName, Qt::Key key)
{
    QDialog* sheet = waitForSheet(objectName);
    QTest::keyClick(sheet, key);
    EXPECT_FALSE(sheet->isVisible());
}

void Program::whenSheetIsUp(const std::function<void(QDialog*)>& action)
{
    QTimer::singleShot(5, &window(), [this, action] {
        if (QDialog* sheet = Sheets::attachedSheet(&window()))
            action(sheet);
        else
            whenSheetIsUp(action);
    });
}

bool Program::isAskedBy(const std::function<void()>& action)
{
    bool isAsked = false;
    QTimer answering;
    QObject::connect(&answering, &QTimer::timeout, [&] {
        if (auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            isAsked = true;
            question->button(QMessageBox::Yes)->click();
        }
    });
    answering.start(1);
    action();
    return isAsked;
}
