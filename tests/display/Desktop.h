// A desktop to run the program on: one display and one bus for all tests, and for each
// test a fresh home, with stand-ins for the programs that open mail, pages and folders. They write
// down what they are called with.
#pragma once

#include "tests/display/DesktopSession.h"
#include "tests/support/qt/QtTest.h"

class Desktop : public ::testing::Test
{
protected:
    using Path = std::filesystem::path;
    using Program = support::RunningProgram;
    using Strings = std::vector<std::string>;

    Desktop();

    // With `settings`, lines of the program's settings file; its window is at the right.
    Program& startParcelo(const Strings& files = {}, const std::string& settings = {},
        const Strings& moreEnvironment = {});
    // The file manager, at the left, on what is to be archived.
    Program& startFileManager();
    void quit(Program& program); // as its user does
    // It ends without a word, and leaves no tool and no file behind.
    void expectGoodEnd(Program& program);
    bool isToolRunning() const;

    // Both give up with an exception.
    std::string waitForWindow(const Program& program, const std::string& title) const;
    void waitForNoWindow(const Program& program, const std::string& title) const;
    // Waits for the window and types xdotool's names of keys into it.
    void press(const Program& program, const std::string& title, const Strings& keys) const;
    // Confirms the save panel and waits until the request has ended.
    void saveAndWait(const Program& parcelo);

    // In the file manager; where the last item is.
    QPoint selectAll(const Program& fileManager) const;
    // Into the box, where the button stays down.
    void drag(QPoint from) const;
    std::string xdotool(const Strings& words) const;
    bool waitForBox(bool isHovered) const;

    std::string callOf(const std::string& program) const; // the last, each argument with a "|"
    std::string temporaryFiles() const;

    static bool waitFor(const std::function<bool()>& condition)
    {
        return QTest::qWaitFor(condition, 30000);
    }

    const support::TestFolder folder;
    const Path source = folder / "src"; // what is archived; there is "one.txt" in it

    Strings environment() const;

private:
    Program& _start(const Strings& command, const std::string& title, const Strings& place,
        const Strings& moreEnvironment = {});
    std::string _findWindow(const Program& program, const std::string& title) const;

    std::vector<std::unique_ptr<Program>> _programs; // killed at the end of the test
};
