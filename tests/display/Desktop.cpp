#include "tests/display/Desktop.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <sstream>

namespace fs = std::filesystem;
using support::run;
using support::RunOptions;

namespace
{

const QString fileManagerName = QStringLiteral("org.freedesktop.FileManager1");
const QString fileManagerPath = QStringLiteral("/org/freedesktop/FileManager1");

// Takes the place of the programs that are named in the folder of stand-ins.
constexpr auto standIn = R"(#!/bin/sh
name=${0##*/}
printf '%s\0' "$@" > "$HOME/called-$name"
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

QDBusConnection sessionBus()
{
    ::setenv("DBUS_SESSION_BUS_ADDRESS", session().busAddress().c_str(), 1);
    return QDBusConnection::sessionBus();
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

} // namespace

// The file manager as others reach it by the bus.
class FileManagerService : public QDBusVirtualObject
{
public:
    QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override
    {
        if (message.member() != QLatin1String("ShowItems"))
            return false;
        for (const QString& item : message.arguments().value(0).toStringList())
            shownItems.push_back(item.toStdString());
        return bus.send(message.createReply());
    }

    std::vector<std::string> shownItems;
};

Desktop::Desktop()
    : _bus(sessionBus())
    , _fileManagerService(std::make_unique<FileManagerService>())
{
    for (const char* name : {"home", "run", "tmp", "config/pcmanfm/default"})
        fs::create_directories(folder / name);
    fs::permissions(folder / "run", fs::perms::owner_all);
    support::writeFile(folder / "config/pcmanfm/default/pcmanfm.conf", "[ui]\nview_mode=list\n");
    support::writeFile(source / "one.txt", "contents of one");
    for (const char* name : {"thunderbird", "xdg-email", "xdg-open", "xdg-mime"}) {
        support::writeFile(folder / "bin" / name, standIn);
        fs::permissions(folder / "bin" / name, fs::perms::owner_all);
    }
    _bus.registerVirtualObject(fileManagerPath, _fileManagerService.get());
    EXPECT_TRUE(_bus.registerService(fileManagerName)) << _bus.lastError().message().toStdString();
}

Desktop::~Desktop()
{
    xdotool({"mouseup", "1", "keyup", "shift"}); // of a test that stopped in the middle
    _bus.unregisterService(fileManagerName);
    _bus.unregisterObject(fileManagerPath);
}

void Desktop::TearDown()
{
    if (!HasFailure())
        return;
    const std::string picture
        = std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()) + ".png";
    run({"import", "-window", "root", picture}, {.environment = _environment()});
    std::cerr << "see " << fs::absolute(picture).native() << "\n";
}

Desktop::Strings Desktop::_environment() const
{
    const std::string at = folder.path().native();
    return {"HOME=" + at + "/home", "XDG_CONFIG_HOME=" + at + "/config",
        "XDG_CACHE_HOME=" + at + "/cache", "XDG_DATA_HOME=" + at + "/data",
        "XDG_STATE_HOME=" + at + "/state", "XDG_RUNTIME_DIR=" + at + "/run",
        "TMPDIR=" + at + "/tmp", "PATH=" + at + "/bin:" + std::getenv("PATH"), "LC_ALL=C.UTF-8",
        "NO_AT_BRIDGE=1", "DISPLAY=" + session().display(),
        "DBUS_SESSION_BUS_ADDRESS=" + session().busAddress()};
}

Desktop::Program& Desktop::_start(const Strings& command, const Strings& moreEnvironment)
{
    Strings environment = _environment();
    environment.insert(environment.end(), moreEnvironment.begin(), moreEnvironment.end());
    _programs.push_back(std::make_unique<Program>(command,
        RunOptions{
            .folder = source, .environment = environment, .timeout = std::chrono::seconds(20)}));
    return *_programs.back();
}

Desktop::Program& Desktop::startParcelo(const Strings& files, const std::string& settings,
    const Path& executable, const Strings& moreEnvironment)
{
    if (!settings.empty())
        support::writeFile(folder / "config/parcelo/parcelo.conf", "[General]\n" + settings);
    Strings command = {executable};
    command.insert(command.end(), files.begin(), files.end());
    Program& program = _start(command, moreEnvironment);
    place(program, "Parcelo", {620, 0});
    return program;
}

Desktop::Program& Desktop::startFileManager()
{
    Program& program = _start({"pcmanfm", "--no-desktop", source});
    place(program, source.filename(), {0, 0});
    xdotool({"windowsize", "--sync", findWindow(program, source.filename()), "560", "500"});
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
    EXPECT_EQ(temporaryFiles(), Strings());
}

// A tool is told a path in our folder.
bool Desktop::isToolRunning() const
{
    return run({"pgrep", "-f", "/Resources/zip .*" + folder.path().native()}).status == 0;
}

std::string Desktop::xdotool(const Strings& words) const
{
    Strings command = {"xdotool"};
    command.insert(command.end(), words.begin(), words.end());
    return run(command, {.environment = _environment(), .timeout = std::chrono::seconds(20)}).out;
}

std::string Desktop::findWindow(const Program& program, const std::string& title) const
{
    const std::string found = xdotool({"search", "--all", "--onlyvisible", "--pid",
        std::to_string(program.pid()), "--name", "^" + title + "$"});
    return found.substr(0, found.find('\n'));
}

std::string Desktop::waitForWindow(const Program& program, const std::string& title) const
{
    std::string found;
    if (!waitFor([&] { return !(found = findWindow(program, title)).empty(); }))
        throw std::runtime_error("there is no window " + title + "\n" + program.err());
    return found;
}

void Desktop::waitForNoWindow(const Program& program, const std::string& title) const
{
    if (!waitFor([&] { return findWindow(program, title).empty(); }))
        throw std::runtime_error("the window stays: " + title);
}

void Desktop::press(const Program& program, const std::string& title, const Strings& keys) const
{
    Strings words
        = {"windowactivate", "--sync", waitForWindow(program, title), "key", "--delay", "30"};
    words.insert(words.end(), keys.begin(), keys.end());
    xdotool(words);
}

void Desktop::place(const Program& program, const std::string& title, Point at) const
{
    xdotool({"windowmove", "--sync", waitForWindow(program, title), std::to_string(at.x),
        std::to_string(at.y)});
}

void Desktop::saveAndWait(const Program& parcelo)
{
    press(parcelo, "Save Archive", {"Return"});
    waitForWindow(parcelo, "Making Archive");
    waitForNoWindow(parcelo, "Making Archive");
}

// A drag begins when the pointer has left the place of the press, and a target is told of it when
// the pointer moves there: one leap would be neither.
void Desktop::drag(Point from, Point to) const
{
    Strings words;
    const auto add
        = [&](const Strings& more) { words.insert(words.end(), more.begin(), more.end()); };
    const auto moveTo = [&](int x, int y) {
        add({"mousemove", std::to_string(x), std::to_string(y), "sleep", "0.02"});
    };
    moveTo(from.x, from.y);
    add({"mousedown", "1", "sleep", "0.05"});
    for (const int pixels : {3, 6, 12, 20})
        moveTo(from.x + pixels, from.y + pixels / 2);
    constexpr int steps = 6;
    for (int step = 1; step <= steps; ++step)
        moveTo(from.x + (to.x - from.x) * step / steps, from.y + (to.y - from.y) * step / steps);
    moveTo(to.x + 2, to.y + 1);
    xdotool(words);
}

// Nothing but the selection is dark for long in this column of pixels.
Point Desktop::selectAll(const Program& fileManager) const
{
    constexpr int x = 345;
    constexpr int aboveScrollBar = 470;
    constexpr int halfOfItem = 8;
    const auto isDark = [](std::uint32_t color) { return (color & 0xFF) < 0xA0; };
    Point item{x, 0};
    const auto isSelected = [&] {
        const std::vector<std::uint32_t> colors = session().column({x, 0}, aboveScrollBar);
        const auto last = std::find_if(colors.rbegin(), colors.rend(), isDark);
        item.y = static_cast<int>(colors.rend() - last) - halfOfItem;
        return item.y > 0 && isDark(colors.at(static_cast<std::size_t>(item.y)));
    };
    // Again when nothing comes of it: its window may not have been ready.
    for (int attempt = 0; attempt < 10; ++attempt) {
        press(fileManager, source.filename(), {"ctrl+a"});
        if (QTest::qWaitFor(isSelected, 3000))
            return item;
    }
    throw std::runtime_error("nothing gets selected");
}

bool Desktop::waitForBox(std::uint32_t color) const
{
    constexpr Point besideCaption{690, 150};
    return waitFor([&] { return session().column(besideCaption, 1).front() == color; });
}

std::vector<std::uint32_t> Desktop::boxOutline() const
{
    constexpr Point top{647, 100};
    return session().column(top, 100);
}

std::vector<std::string> Desktop::shownItems() const
{
    return _fileManagerService->shownItems;
}

void Desktop::removeFileManagerService()
{
    _bus.unregisterService(fileManagerName);
}

std::vector<std::string> Desktop::callOf(const std::string& program) const
{
    const Path record = folder / "home" / ("called-" + program);
    return fs::exists(record) ? split(support::readFile(record), '\0') : Strings();
}

bool Desktop::hasSetting(const std::string& line) const
{
    const std::string stored = support::readFile(folder / "config/parcelo/parcelo.conf");
    return stored.find("\n" + line + "\n") != std::string::npos;
}

std::vector<std::string> Desktop::temporaryFiles() const
{
    Strings files;
    for (const auto& entry : fs::recursive_directory_iterator(folder / "tmp"))
        if (!entry.is_directory())
            files.push_back(entry.path());
    return files;
}
