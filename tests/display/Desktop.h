// A desktop to run the program on: one display and one bus for all tests, and for each
// test a fresh home, with stand-ins for the programs that open mail, pages and folders. They write
// down what they are called with.
#pragma once

#include "tests/display/DesktopSession.h"
#include "tests/support/Files.h"
#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <QDBusConnection>
#include <QTest>

#include <gtest/gtest.h>

class FileManagerService;

class Desktop : public ::testing::Test
{
protected:
    using Path = std::filesystem::path;
    using Program = support::RunningProgram;
    using Strings = std::vector<std::string>;

    Desktop();
    ~Desktop() override;
    void TearDown() override; // takes a picture when the test has failed

    // --- Programs ---

    // With `settings`, lines of the program's settings file; its window is at the right.
    Program& startParcelo(const Strings& files = {}, const std::string& settings = {},
        const Path& executable = PARCELO_PROGRAM, const Strings& moreEnvironment = {});
    // The file manager, at the left, on what is to be archived.
    Program& startFileManager();
    // Ends the program as its user does.
    void quit(Program& program);
    // It ends without a word, and leaves no tool and no file behind.
    void expectGoodEnd(Program& program);
    bool isToolRunning() const;

    // --- Windows ---

    std::string findWindow(const Program& program, const std::string& title) const;
    // Both give up with an exception.
    std::string waitForWindow(const Program& program, const std::string& title) const;
    void waitForNoWindow(const Program& program, const std::string& title) const;
    // Waits for the window and types xdotool's names of keys into it.
    void press(const Program& program, const std::string& title, const Strings& keys) const;
    void place(const Program& program, const std::string& title, Point at) const;
    // Confirms the save panel and waits until the request has ended.
    void saveAndWait(const Program& parcelo);

    // --- Mouse ---

    // The button goes down at `from` and stays down.
    void drag(Point from, Point to) const;
    // In the file manager; where the last item is.
    Point selectAll(const Program& fileManager) const;
    // In the box of the program at the right.
    static constexpr Point box{830, 150};
    static constexpr std::uint32_t idleColor = 0xFFFFFF;
    static constexpr std::uint32_t hoverColor = 0x999999;
    bool waitForBox(std::uint32_t color) const;
    std::vector<std::uint32_t> boxOutline() const;

    // --- What the rest of the desktop was asked for ---

    Strings shownItems() const; // addresses, by the file manager's service
    void removeFileManagerService();
    Strings callOf(const std::string& program) const; // the arguments of its last call

    // --- Files ---

    bool hasSetting(const std::string& line) const;
    // Regular files below the folder for temporary files.
    Strings temporaryFiles() const;

    template <typename Condition> static bool waitFor(Condition condition)
    {
        constexpr int longestInMilliseconds = 30000;
        return QTest::qWaitFor(condition, longestInMilliseconds); // serves the bus
    }

    std::string xdotool(const Strings& words) const;

    const support::TestFolder folder;
    const Path source = folder / "src"; // what is archived; there is "one.txt" in it

private:
    Strings _environment() const;
    Program& _start(const Strings& command, const Strings& moreEnvironment = {});

    QDBusConnection _bus;
    std::unique_ptr<FileManagerService> _fileManagerService;
    std::vector<std::unique_ptr<Program>> _programs; // killed at the end of the test
};
