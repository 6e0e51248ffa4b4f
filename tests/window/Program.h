// The program with its window in this process, with settings of its own that begin empty.
#pragma once

#include "app/window/AppController.h"
#include "app/window/MainInterface.h"
#include "platform/desktop/services/MailComposer.h"
#include "platform/desktop/services/MainQueueTimers.h"
#include "platform/desktop/services/Workspace.h"
#include "tests/support/TestFolder.h"

#include <QDialog>
#include <QString>
#include <QVariant>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// The desktop as the program asks for it: notes everything, does nothing.
class NotingWorkspace : public Workspace
{
public:
    bool openURL(const QUrl& url) override
    {
        opened.push_back(url.toString().toStdString());
        return true;
    }
    void selectFile(const std::filesystem::path& path,
        const std::optional<std::filesystem::path>& /*inFileViewerRootedAtPath*/) override
    {
        revealed.push_back(path);
    }

    std::vector<std::string> opened;
    std::vector<std::filesystem::path> revealed;
};

class NotingComposer : public MailComposer
{
public:
    bool composeMessage(const std::filesystem::path& attachment) override
    {
        mailed.push_back(attachment);
        return true;
    }

    std::vector<std::filesystem::path> mailed;
};

class Program : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Starts it with what was stored before, as if the files had been opened with its icon.
    void start(const std::map<QString, QVariant>& stored = {},
        const std::vector<std::filesystem::path>& files = {});

    AppController& controller() { return *_controller; }
    QKWindow& window() { return _interface->window(); }

    // The part of the window, or of a sheet on it, with this name.
    template <typename Part> Part* find(const char* objectName)
    {
        Part* part = window().findChild<Part*>(QLatin1String(objectName));
        EXPECT_NE(part, nullptr) << "there is no " << objectName;
        return part;
    }

    // Serves events until the condition holds; false when it never does.
    static bool waitFor(const std::function<bool()>& condition);
    static void serveEventsFor(int milliseconds);

    // Does something as soon as a sheet is up on the window.
    void whenSheetIsUp(const std::function<void(QDialog*)>& action);

    support::TestFolder folder;
    NotingWorkspace workspace;
    NotingComposer composer;

private:
    int _worlds = 0; // settings made: a test may begin anew
    MainQueueTimers _mainQueue;
    std::unique_ptr<AppController> _controller;
    std::unique_ptr<MainInterface> _interface;
};
