// The program with its window in this process, with settings of the test's own.
#pragma once

#include "app/window/AppController.h"
#include "app/window/DropView.h"
#include "app/window/MainInterface.h"
#include "platform/base/seams/AlertPanel.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/services/MainQueueTimers.h"
#include "platform/desktop/services/UriList.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "tests/support/NotingDesktop.h"
#include "tests/support/qt/QtTest.h"

#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QWindow>

class Program : public ::testing::Test
{
protected:
    using Path = std::filesystem::path;
    using Texts = std::vector<std::string>;

    Program()
    {
        UserDefaults::setStandardUserDefaults(std::make_unique<UserDefaults>(folder / "settings"));
        AlertPanel::setPresenter([this](const AlertPanel::Alert& alert) {
            told.push_back(AlertPanel::text(alert));
            return int{AlertPanel::answerDefault};
        });
    }
    ~Program() override
    {
        _end();
        AlertPanel::setPresenter({});
    }

    // Starts the program anew, with these settings too, and files opened with its icon.
    void start(const std::vector<std::pair<const char*, QVariant>>& settings = {},
        const std::vector<Path>& files = {})
    {
        _end();
        for (const auto& [key, value] : settings)
            store(key, value);
        _controller = std::make_unique<AppController>();
        _interface = std::make_unique<MainInterface>(*_controller);
        QObject::connect(
            _controller.get(), &AppController::terminated, &window(), [this] { hasQuit = true; });
        for (const Path& file : files)
            _controller->applicationOpenFile(file);
        window().show();
        _controller->applicationDidFinishLaunching();
        ASSERT_TRUE(waitForFocus());
    }

    AppController& controller() { return *_controller; }
    QKWindow& window() { return _interface->window(); }
    DropView& box() { return *find<DropView>("saveDropView"); }
    std::string textOf(const char* label)
    {
        const auto* text = find<QWidget>(label);
        const QVariant plain = text->property("plainText"); // of a text that can be longer
        return (plain.isValid() ? plain : text->property("text")).toString().toStdString();
    }
    // The part of the window, or of a sheet on it, with this name.
    template <typename Part> Part* find(const char* objectName)
    {
        Part* part = window().findChild<Part*>(QLatin1String(objectName));
        EXPECT_NE(part, nullptr) << "there is no " << objectName;
        return part;
    }
    static QVariant stored(const char* key)
    {
        return UserDefaults::standardUserDefaults().objectForKey(QLatin1String(key));
    }
    static void store(const char* key, const QVariant& value)
    {
        UserDefaults::standardUserDefaults().setObject(value, QLatin1String(key));
    }

    // Qt's own waiting has no patience where a window cannot activate itself, as on Wayland.
    bool waitForFocus()
    {
        window().activateWindow();
        return waitFor([this] { return hasKeys(window()); });
    }
    static bool isOnWayland() { return QGuiApplication::platformName() == u"wayland"; }
    static bool hasKeys(const QWidget& it)
    {
        return QApplication::activeWindow() == &it && it.windowHandle()->isExposed();
    }
    void type(QKeyCombination keys) // into the main window
    {
        EXPECT_TRUE(waitForFocus());
        QTest::keyClick(&window(), keys.key(), keys.keyboardModifiers());
    }
    bool drop(const QByteArray& bytes, const char* format = "text/uri-list")
    {
        QMimeData data;
        data.setData(QLatin1String(format), bytes);
        QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QDropEvent event({60, 60}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&box(), &enter);
        QCoreApplication::sendEvent(&box(), &event);
        return enter.isAccepted() && event.isAccepted();
    }
    void drop(const std::vector<Path>& files)
    {
        QByteArray list;
        for (const Path& file : files)
            list += QByteArray::fromStdString(UriList::fileUri(file) + "\r\n");
        EXPECT_TRUE(drop(list));
    }
    // Serves events until the condition holds; false when it never does.
    static bool waitFor(const std::function<bool()>& condition)
    {
        return QTest::qWaitFor(condition, 20000);
    }

    QDialog* sheet() { return Sheets::attachedSheet(&window()); }
    QDialog* waitForSheet(const char* objectName)
    {
        if (!waitFor([&] { return sheet() && sheet()->objectName() == QLatin1String(objectName); }))
            throw std::runtime_error(std::string("there is no sheet ") + objectName);
        return sheet();
    }
    // The sheet that comes, or is up, is ended by the key, with this in its field.
    void endSheet(const char* objectName, Qt::Key key = Qt::Key_Escape, const QString& file = {})
    {
        const QDialog* ended = waitForSheet(objectName);
        if (!file.isEmpty())
            sheet()->findChild<QLineEdit*>("fileNameEdit")->setText(file);
        QTest::keyClick(sheet(), key);
        EXPECT_FALSE(ended->isVisible());
    }
    // Does something as soon as a sheet is up: for one that the program waits for.
    void whenSheetIsUp(const std::function<void()>& action)
    {
        QTimer::singleShot(5, &window(), [this, action] {
            if (sheet() != nullptr && hasKeys(*sheet()))
                action();
            else
                whenSheetIsUp(action);
        });
    }
    // From now on messages are noted and answered by a key on their first button.
    void readMessages()
    {
        whenSheetIsUp([this] {
            if (sheet()->findChild<QLabel*>("alertTitle") != nullptr) {
                told.push_back(textOf("alertTitle") + "|" + textOf("alertMessage"));
                auto* other = sheet()->findChild<QPushButton*>();
                other->setFocus();
                QTest::keyClick(other, answer);
            }
            readMessages();
        });
    }

    const support::TestFolder folder;
    bool hasQuit = false;
    Texts told; // alerts, too
    Qt::Key answer = Qt::Key_Escape;
    support::NotingWorkspace workspace;
    support::NotingComposer composer;

private:
    void _end()
    {
        if (_controller)
            _controller->terminateNow(); // removes what it has made
        _interface.reset();
        _controller.reset();
    }

    MainQueueTimers _mainQueue;
    std::unique_ptr<AppController> _controller;
    std::unique_ptr<MainInterface> _interface;
};
