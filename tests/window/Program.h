// The program with its window in this process. Each start has settings of its own.
#pragma once

#include "app/window/AppController.h"
#include "app/window/MainInterface.h"
#include "platform/desktop/services/MainQueueTimers.h"
#include "tests/support/NotingDesktop.h"
#include "tests/support/TestFolder.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QVariant>

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

class DropView;

class Program : public ::testing::Test
{
protected:
    using Path = std::filesystem::path;
    using Settings = std::vector<std::pair<const char*, QVariant>>;

    Program();
    ~Program() override;

    // Ends the program, if it runs, and starts it with settings that hold just these, as if the
    // files had been opened with its icon.
    void start(const Settings& stored = {}, const std::vector<Path>& files = {});
    // The same with the settings that the last one left.
    void startAgain(const std::vector<Path>& files = {});
    bool hasQuit() const { return _hasQuit; }

    AppController& controller() { return *_controller; }
    QKWindow& window() { return _interface->window(); }
    DropView& box();
    std::string textOf(const char* label);
    // The part of the window, or of a sheet on it, with this name.
    template <typename Part> Part* find(const char* objectName)
    {
        Part* part = window().findChild<Part*>(QLatin1String(objectName));
        EXPECT_NE(part, nullptr) << "there is no " << objectName;
        return part;
    }

    static QVariant stored(const char* key);
    static void store(const char* key, const QVariant& value);

    // Into the main window.
    void type(QKeyCombination keys);
    // The files are dragged over the box and let go.
    void drop(const std::vector<Path>& files);

    // Serves events until the condition holds; false when it never does.
    static bool waitFor(const std::function<bool()>& condition)
    {
        return QTest::qWaitFor(condition, 20000);
    }

    // Gives up with an exception.
    QDialog* waitForSheet(const char* objectName);
    // The sheet that comes, or is up, is ended by the key.
    void endSheet(const char* objectName, Qt::Key key = Qt::Key_Escape);
    // Does something as soon as a sheet is up: for one that the program waits for.
    void whenSheetIsUp(const std::function<void(QDialog*)>& action);
    // Tells whether a question came while the action lasted, which was answered with yes.
    static bool isAskedBy(const std::function<void()>& action);

    const support::TestFolder folder;
    std::vector<std::string> alerts; // their messages: nobody has to answer them
    support::NotingWorkspace workspace;
    support::NotingComposer composer;

private:
    void _end();

    int _worlds = 0; // settings made
    bool _hasQuit = false;
    MainQueueTimers _mainQueue;
    std::unique_ptr<AppController> _controller;
    std::unique_ptr<MainInterface> _interface;
};
