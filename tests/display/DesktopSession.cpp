#include "tests/display/DesktopSession.h"

#include "tests/support/Files.h"

#include <csignal>
#include <stdexcept>

#include <endian.h>
#include <fcntl.h>
#include <unistd.h>

using support::run;
using support::RunningProgram;
using Strings = std::vector<std::string>;

namespace
{

// Without any folder of services: what nobody on this bus offers is missing.
constexpr auto busConfiguration = R"(<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/> <allow eavesdrop="true"/> <allow own="*"/>
  </policy>
</busconfig>
)";

Strings endingWithUs(Strings command)
{
    command.insert(command.begin(), {"setpriv", "--pdeathsig", "TERM"});
    return command;
}

// Waits for the first line of what a server prints.
std::string firstLine(const RunningProgram& server, const char* name)
{
    if (!support::waitUntil([&] { return server.out().find('\n') != std::string::npos; }))
        throw std::runtime_error(std::string(name) + " does not start: " + server.err());
    return server.out().substr(0, server.out().find('\n'));
}

} // namespace

DesktopSession::DesktopSession()
    // It would start over, and drop who is about to come, whenever its last client has gone.
    : _server(endingWithUs({"Xvfb", "-displayfd", "1", "-screen", "0", "1100x700x24", "-noreset",
        "-nolisten", "tcp", "-fbdir", _folder.path()}))
    , _display(":" + firstLine(_server, "Xvfb"))
{
    support::writeFile(_folder / "bus.conf", busConfiguration);
    _bus = std::make_unique<RunningProgram>(endingWithUs(
        {"dbus-daemon", "--nofork", "--config-file", _folder / "bus.conf", "--print-address=1"}));
    _busAddress = firstLine(*_bus, "dbus-daemon");
    const support::RunOptions onDisplay{.environment
        = Strings{"DISPLAY=" + _display, "HOME=" + _folder.path().native(), "LC_ALL=C.UTF-8"}};
    _windowManager = std::make_unique<RunningProgram>(Strings{"openbox"}, onDisplay);
    const auto isManaged = [&] {
        return run({"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"}, onDisplay).out.find("window id")
            != std::string::npos;
    };
    if (!support::waitUntil(isManaged))
        throw std::runtime_error("openbox does not start: " + _windowManager->err());
}

DesktopSession::~DesktopSession()
{
    _windowManager.reset();
    _bus.reset();
    _server.signal(SIGTERM); // so that it takes its lock and socket with it
    (void)_server.wait();
}

// The server keeps its screen in a file in the format of xwd: numbers of four bytes, the most
// significant first, then the colour map, then the pixels as they are.
std::vector<std::uint32_t> DesktopSession::column(Point from, int count) const
{
    const FileDescriptor screen(::open((_folder / "Xvfb_screen0").c_str(), O_RDONLY | O_CLOEXEC));
    std::uint32_t header[25] = {};
    if (::pread(screen.number(), header, sizeof header, 0) != sizeof header)
        throw std::runtime_error("there is no screen");
    constexpr std::uint32_t colorSize = 12;
    const std::uint32_t pixels = be32toh(header[0]) + be32toh(header[19]) * colorSize;
    std::vector<std::uint32_t> colors;
    for (int y = from.y; y < from.y + count; ++y) {
        std::uint32_t color = 0;
        (void)::pread(screen.number(), &color, sizeof color,
            pixels + y * be32toh(header[12]) + from.x * sizeof color);
        colors.push_back(color & 0xFFFFFF);
    }
    return colors;
}
