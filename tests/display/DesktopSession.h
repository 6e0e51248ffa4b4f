// A display in memory with a window manager, and a session bus. They end with the process that made
// them, however it ends.
#pragma once

#include "tests/support/PrivateBus.h"

#include <cstdint>
#include <memory>

struct Point {
    int x = 0;
    int y = 0;
};

class DesktopSession
{
public:
    DesktopSession();
    ~DesktopSession();

    const std::string& display() const { return _display; }
    const std::string& busAddress() const { return _bus.address(); }

    // The colours of `count` pixels downward from a point, each 0xRRGGBB.
    std::vector<std::uint32_t> column(Point from, int count) const;

private:
    const support::TestFolder _folder;
    const support::PrivateBus _bus;
    support::RunningProgram _server;
    std::string _display;
    std::unique_ptr<support::RunningProgram> _windowManager;
};
