// A display in memory. It ends with the process that made it, however that ends.
#pragma once

#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <QPoint>

#include <cstring>

#include <endian.h>

class VirtualDisplay
{
public:
    VirtualDisplay()
    {
        if (!support::waitUntil([&] { return _server.out().find('\n') != std::string::npos; }))
            throw std::runtime_error("Xvfb does not start: " + _server.err());
        display = ":" + _server.out().substr(0, _server.out().find('\n'));
    }
    ~VirtualDisplay()
    {
        _server.signal(SIGTERM); // so that it takes its lock and socket with it
        (void)_server.wait();
    }

    // The colours of `count` pixels downward from a point, each 0xRRGGBB. The server keeps its
    // screen in a file in the format of xwd: numbers of four bytes, the most significant first,
    // then the colour map, then the pixels as they are.
    std::vector<std::uint32_t> column(QPoint from, int count) const
    {
        const std::string screen = support::readFile(_folder / "Xvfb_screen0");
        const auto number = [&](std::size_t index) {
            std::uint32_t value = 0;
            std::memcpy(&value, screen.data() + index * sizeof value, sizeof value);
            return value;
        };
        const std::uint32_t pixels = (be32toh(number(0)) + be32toh(number(19)) * 12) / 4;
        std::vector<std::uint32_t> colors;
        for (int y = from.y(); y < from.y() + count; ++y)
            colors.push_back(number(pixels + y * be32toh(number(12)) / 4 + from.x()) & 0xFFFFFF);
        return colors;
    }

    std::string display; // as DISPLAY names it

private:
    const support::TestFolder _folder;
    // It would start over, and drop who is about to come, whenever its last client has gone.
    support::RunningProgram _server{{"setpriv", "--pdeathsig", "TERM", "Xvfb", "-displayfd", "1",
        "-screen", "0", "1100x768x24", "-noreset", "-nolisten", "tcp", "-fbdir", _folder.path()}};
};
