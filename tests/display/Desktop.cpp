#include "tests/display/Desktop.h"

namespace fs = std::filesystem;
using support::run;

namespace
{

// Takes the place of the programs that are named in the folder of stand-ins.
constexpr auto standIn = R"(#!/bin/sh
name=${0##*/}
printf '%s|' "$@" > "$HOME/called-$name"
case "$name $3" in
"xdg-mime x-scheme-handler/mailto") echo thunderbird.desktop ;;
"xdg-mime inode/directory") echo pcmanfm.desktop ;;
esac
)";

// One for all tests, made for the first.
const DesktopSession& session()
{
    static const DesktopSession desktop;
    return desktop;
}

std::vector<std::string> joined(
    std::vector<std::string> first, const std::vector<std::string>& more)
{
    first.insert(first.end(), more.begin(), more.end());
    return first;
}

} // namespace

Desktop::Desktop()
{
    xdotool({"mouseup", "1", "keyup", "shift"}); // of a test that stopped in the middle
    for (const char* name : {"home", "run", "tmp"})
        fs::create_directories(folder / name);
    fs::permissions(folder / "run", fs::perms::owner_all);
    support::writeFile(
        folder / "home/.config/pcmanfm/default/pcmanfm.conf", "[ui]\nview_mode=list\n");
    support::writeFile(source / "one.txt", "contents of one");
    for (const char* name : {"thunderbird", "xdg-email", "xdg-open", "xdg-mime"}) {
        support::writeFile(folder / "bin" / name, standIn);
        fs::permissions(folder / "bin" / name, fs::perms::owner_all);
    }
}

Desktop::Strings Desktop::environment() const
{
    const std::string at = folder.path().native();
    return {"HOME=" + at + "/home", "XDG_RUNTIME_DIR=" + at + "/run", "TMPDIR=" + at + "/tmp",
        "PATH=" + at + "/bin:" + std::getenv("PATH"), "LC_ALL=C.UTF-8", "NO_AT_BRIDGE=1",
        "DISPLAY=" + session().display, "DBUS_SESSION_BUS_ADDRESS=" + session().bus.address()};
}

Desktop::Program& Desktop::_start(const Strings& command, const std::string& title,
    const Strings& place, const Strings& moreEnvironment)
{
    const support::RunOptions options{.folder = source,
        .environment = joined(environment(), moreEnvironment),
        .timeout = std::chrono::seconds(20)};
    Program& program = *_programs.emplace_back(std::make_unique<Program>(command, options));
    xdotool(joined({"windowmove", "--sync", waitForWindow(program, title)}, place));
    return program;
}

Desktop::Program& Desktop::startParcelo(
    const Strings& files, const std::string& settings, const Strings& moreEnvironment)
{
    if (!settings.empty())
        support::writeFile(folder / "home/.config/parcelo/parcelo.conf", "[General]\n" + settings);
    return _start(joined({PARCELO_PROGRAM}, files), "Parcelo", {"620", "0"}, moreEnvironment);
}

Desktop::Program& Desktop::startFileManager()
{
    Program& program = _start({"pcmanfm", "--no-desktop", source}, source.filename(), {"0", "0"});
    xdotool({"windowsize", "--sync", waitForWindow(program, source.filename()), "560", "500"});
    return program;
}

void Desktop::quit(Program& program)
{
    press(program, "Parcelo", {"ctrl+q"});
    expectGoodEnd(program);
}

void Desktop::expectGoodEnd(Program& program)
{
    const support::RunResult result = program.wait();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(waitFor([&] { return !isToolRunning(); }));
    EXPECT_EQ(temporaryFiles(), "");
}

// A tool is told a path in our folder.
bool Desktop::isToolRunning() const
{
    return run({"pgrep", "-f", "/Resources/zip .*" + folder.path().native()}).status == 0;
}

std::string Desktop::xdotool(const Strings& words) const
{
    return run(joined({"xdotool"}, words),
        {.environment = environment(), .timeout = std::chrono::seconds(20)})
        .out;
}

std::string Desktop::_findWindow(const Program& program, const std::string& title) const
{
    const std::string found = xdotool({"search", "--all", "--onlyvisible", "--pid",
        std::to_string(program.pid()), "--name", "^" + title + "$"});
    return found.substr(0, found.find('\n'));
}

std::string Desktop::waitForWindow(const Program& program, const std::string& title) const
{
    std::string found;
    if (!waitFor([&] { return !(found = _findWindow(program, title)).empty(); }))
        throw std::runtime_error("there is no window " + title + "\n" + program.err());
    return found;
}

void Desktop::waitForNoWindow(const Program& program, const std::string& title) const
{
    if (!waitFor([&] { return _findWindow(program, title).empty(); }))
        throw std::runtime_error("the window stays: " + title);
}

void Desktop::press(const Program& program, const std::string& title, const Strings& keys) const
{
    const std::string window = waitForWindow(program, title);
    xdotool(joined({"windowactivate", "--sync", window, "key", "--delay", "30"}, keys));
}

void Desktop::saveAndWait(const Program& parcelo)
{
    press(parcelo, "Save Archive", {"Return"});
    waitForWindow(parcelo, "Making Archive");
    waitForNoWindow(parcelo, "Making Archive");
}

// A drag begins when the pointer has left the place of the press, and a target is told of it when
// the pointer moves there: one leap would be neither.
void Desktop::drag(QPoint from) const
{
    constexpr QPoint box{830, 150};
    Strings words;
    for (const double share : {0.0, 0.01, 0.02, 0.04, 0.2, 0.4, 0.6, 0.8, 0.99, 1.0}) {
        const QPoint at = from + (box - from) * share;
        words = joined(
            words, {"mousemove", std::to_string(at.x()), std::to_string(at.y()), "sleep", "0.02"});
        if (share == 0)
            words = joined(words, {"mousedown", "1", "sleep", "0.05"});
    }
    xdotool(words);
    EXPECT_TRUE(waitForBox(true));
}

// Nothing but the selection is dark for long in this column of pixels.
QPoint Desktop::selectAll(const Program& fileManager) const
{
    constexpr int aboveScrollBar = 470;
    constexpr int halfOfItem = 8;
    const auto isDark = [](std::uint32_t color) { return (color & 0xFF) < 0xA0; };
    QPoint item{345, 0};
    const auto isSelected = [&] {
        const auto colors = session().column({item.x(), 0}, aboveScrollBar);
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

bool Desktop::waitForBox(bool isHovered) const
{
    const std::uint32_t color = isHovered ? 0x999999 : 0xFFFFFF;
    return waitFor([&] { return session().column({690, 150}, 1).front() == color; });
}

std::string Desktop::callOf(const std::string& program) const
{
    return run({"cat", folder / "home" / ("called-" + program)}).out;
}

std::string Desktop::temporaryFiles() const
{
    return run({"find", folder / "tmp", "-type", "f", "-printf", "%p"}).out;
}
