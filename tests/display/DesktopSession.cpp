#include "tests/display/DesktopSession.h"

#include "tests/support/Files.h"

#include <csignal>
#include <stdexcept>

#include <endian.h>
#include <fcntl.h>
#include <unistd.h>

using Strings = std::vector<std::string>;

DesktopSession::DesktopSession()
    // It would start over, and drop who is about to come, whenever its last client has gone.
    : _server({"setpriv", "--pdeathsig", "TERM", "Xvfb", "-displayfd", "1", "-screen", "0",
        "1100x700x24", "-noreset", "-nolisten", "tcp", "-fbdir", _folder.path()})
{
    if (!support::waitUntil([&] { return _server.out().find('\n') != std::string::npos; }))
        throw std::runtime_error("Xvfb does not start: " + _server.err());
    _display = ":" + _server.out().substr(0, _server.out().find('\n'));
    const support::RunOptions onDisplay{.environment
        = Strings{"DISPLAY=" + _display, "HOME=" + _folder.path().native(), "LC_ALL=C.UTF-8"}};
    _windowManager = std::make_unique<support::RunningProgram>(Strings{"openbox"}, onDisplay);
    const auto isManaged = [&] {
        const Strings query{"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"};
        return support::run(query, onDisplay).out.find("window id") != std::string::npos;
    };
    if (!support::waitUntil(isManaged))
        throw std::runtime_error("openbox does not start: " + _windowManager->err());
}

DesktopSession::~DesktopSession()
{
    _windowManager.reset();
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
