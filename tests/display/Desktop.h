// A desktop to run the program on: one display and one bus for all tests, and for each
// test a fresh home, with stand-ins for the programs that open mail, pages and folders. They write
// down what they are called with.
#pragma once

#include "tests/display/DesktopSession.h"
#include "tests/support/ZipInspector.h"
#include "tests/support/qt/QtTest.h"

class Desktop : public ::testing::Test
{
protected:
    using Path = std::filesystem::path;
    using Program = support::RunningProgram;
    using Strings = std::vector<std::string>;

    Desktop()
    {
        xdotool({"mouseup", "1", "keyup", "shift"}); // of a test that stopped in the middle
        for (const char* name : {"home", "run", "tmp"})
            create_directories(folder / name);
        permissions(folder / "run", std::filesystem::perms::owner_all);
        support::writeFile(
            folder / "home/.config/pcmanfm/default/pcmanfm.conf", "[ui]\nview_mode=list\n");
        support::writeFile(source / "one.txt", "contents of one");
        for (const char* name : {"thunderbird", "xdg-email", "xdg-open", "xdg-mime"}) {
            support::writeFile(folder / "bin" / name, R"(#!/bin/sh
                name=${0##*/}
                printf '%s|' "$@" > "$HOME/called-$name"
                case "$name $3" in
                "xdg-mime x-scheme-handler/mailto") echo thunderbird.desktop ;;
                "xdg-mime inode/directory") echo pcmanfm.desktop ;;
                esac)");
            permissions(folder / "bin" / name, std::filesystem::perms::owner_all);
        }
    }

    // With `settings`, lines of the program's settings file; its window is at the right.
    Program& startParcelo(const Strings& files = {}, const std::string& settings = {})
    {
        if (!settings.empty())
            support::writeFile(
                folder / "home/.config/parcelo/parcelo.conf", "[General]\n" + settings);
        return _start(_joined({PARCELO_PROGRAM}, files), "Parcelo", {"620", "0"});
    }
    // The file manager, at the left, on what is to be archived.
    Program& startFileManager()
    {
        const std::string title = source.filename();
        Program& program = _start({"pcmanfm", "--no-desktop", source}, title, {"0", "0"});
        xdotool({"windowsize", "--sync", waitForWindow(program, title), "560", "500"});
        return program;
    }
    void quit(Program& program) // as its user does
    {
        press(program, "Parcelo", {"ctrl+q"});
        expectGoodEnd(program);
    }
    // It ends without a word, and leaves no tool and no file behind.
    void expectGoodEnd(Program& program)
    {
        const support::RunResult result = program.wait();
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_TRUE(waitFor([&] { return !isToolRunning(); }));
        EXPECT_EQ(temporaryFiles(), "");
    }
    bool isToolRunning() const // which is told a path in our folder
    {
        const std::string tool = "/Resources/zip .*" + folder.path().native();
        return support::run({"pgrep", "-f", tool}).status == 0;
    }

    // These give up with an exception.
    std::string waitForWindow(const Program& program, const std::string& title) const
    {
        std::string found;
        if (!waitFor([&] { return !(found = _findWindow(program, title)).empty(); }))
            throw std::runtime_error("there is no window " + title + "\n" + program.err());
        return found;
    }
    void waitForNoWindow(const Program& program, const std::string& title) const
    {
        if (!waitFor([&] { return _findWindow(program, title).empty(); }))
            throw std::runtime_error("the window stays: " + title);
    }
    // For the window that has the keyboard.
    void waitForActive(const std::string& title) const
    {
        std::string active;
        const auto isActive = [&] {
            return (active = xdotool({"getactivewindow", "getwindowname"})) == title + '\n';
        };
        if (!waitFor(isActive))
            throw std::runtime_error("the window is not active: " + title + ", but " + active);
    }
    // Waits for the window and types xdotool's names of keys into it.
    void press(const Program& program, const std::string& title, const Strings& keys) const
    {
        const std::string window = waitForWindow(program, title);
        xdotool(_joined({"windowactivate", "--sync", window, "key", "--delay", "30"}, keys));
    }
    // Confirms the save panel and waits until the request has ended.
    void saveAndWait(const Program& parcelo) const
    {
        press(parcelo, "Save Archive", {"Return"});
        waitForWindow(parcelo, "Making Archive");
        waitForNoWindow(parcelo, "Making Archive");
    }

    // In the file manager; where the last item is. Nothing but the selection is dark for long in
    // this column of pixels.
    QPoint selectAll(const Program& fileManager) const
    {
        constexpr int aboveScrollBar = 470;
        constexpr int halfOfItem = 8;
        const auto isDark = [](std::uint32_t color) { return (color & 0xFF) < 0xA0; };
        QPoint item{345, 0};
        const auto isSelected = [&] {
            const auto colors = _session().column({item.x(), 0}, aboveScrollBar);
            const auto last = std::find_if(colors.rbegin(), colors.rend(), isDark);
            item.setY(static_cast<int>(colors.rend() - last) - halfOfItem);
            return item.y() > 0 && isDark(colors.at(static_cast<std::size_t>(item.y())));
        };
        // Again when nothing comes of it: its window may not have been ready.
        for (int attempt = 0; attempt < 10; ++attempt) {
            press(fileManager, source.filename(), {"ctrl+a"});
            if (QTest::qWaitFor(isSelected, 3000))
                return item;
        }
        throw std::runtime_error("nothing gets selected");
    }
    // Into the box, where the button stays down. A drag begins when the pointer has left the place
    // of the press, and a target is told of it when the pointer moves there: one leap would be
    // neither.
    void drag(QPoint from) const
    {
        constexpr QPoint box{830, 150};
        Strings words;
        for (const double share : {0.0, 0.01, 0.02, 0.04, 0.2, 0.4, 0.6, 0.8, 0.99, 1.0}) {
            const QPoint at = from + (box - from) * share;
            words = _joined(words,
                {"mousemove", std::to_string(at.x()), std::to_string(at.y()), "sleep", "0.02"});
            if (share == 0)
                words = _joined(words, {"mousedown", "1", "sleep", "0.05"});
        }
        xdotool(words);
        EXPECT_TRUE(waitForBox(true));
    }
    std::string xdotool(const Strings& words) const
    {
        return support::run(_joined({"xdotool"}, words), options()).out;
    }
    bool waitForBox(bool isHovered) const
    {
        const std::uint32_t color = isHovered ? 0x999999 : 0xFFFFFF;
        return waitFor([&] { return _session().column({690, 150}, 1).front() == color; });
    }

    std::string callOf(const char* program) const // the last, each argument with a "|"
    {
        return support::run({"cat", (folder / "home/called-").native() + program}).out;
    }
    std::string temporaryFiles() const
    {
        return support::run({"find", folder / "tmp", "-type", "f", "-printf", "%p"}).out;
    }

    static bool waitFor(const std::function<bool()>& condition)
    {
        return QTest::qWaitFor(condition, 30000);
    }

    support::RunOptions options() const
    {
        const std::string at = folder.path().native();
        return {.folder = source,
            .environment = Strings{"HOME=" + at + "/home", "XDG_RUNTIME_DIR=" + at + "/run",
                "TMPDIR=" + at + "/tmp", "PATH=" + at + "/bin:" + std::getenv("PATH"),
                "LC_ALL=C.UTF-8", "LANGUAGE=" + language, "NO_AT_BRIDGE=1",
                "DISPLAY=" + _session().display,
                "DBUS_SESSION_BUS_ADDRESS=" + _session().bus.address()},
            .timeout = std::chrono::seconds(20)};
    }

    const support::TestFolder folder;
    const Path source = folder / "src"; // what is archived; there is "one.txt" in it
    std::string language;

private:
    // One for all tests, made for the first.
    static const DesktopSession& _session()
    {
        static const DesktopSession desktop;
        return desktop;
    }
    static Strings _joined(Strings first, const Strings& more)
    {
        first.insert(first.end(), more.begin(), more.end());
        return first;
    }
    Program& _start(const Strings& command, const std::string& title, const Strings& place)
    {
        Program& program = *_programs.emplace_back(std::make_unique<Program>(command, options()));
        xdotool(_joined({"windowmove", "--sync", waitForWindow(program, title)}, place));
        return program;
    }
    std::string _findWindow(const Program& program, const std::string& title) const
    {
        const std::string found = xdotool({"search", "--all", "--onlyvisible", "--pid",
            std::to_string(program.pid()), "--name", "^" + title + "$"});
        return found.substr(0, found.find('\n'));
    }

    std::vector<std::unique_ptr<Program>> _programs; // killed at the end of the test
};
