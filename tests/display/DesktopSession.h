// A display in memory with a window manager, and a session bus on which nobody starts services.
// They end with the process that made them, however it ends.
#pragma once

#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct Point {
    int x = 0;
    int y = 0;
};

class DesktopSession
{
public:
    DesktopSession();
    ~DesktopSession();
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    const std::string& display() const { return _display; }
    const std::string& busAddress() const { return _busAddress; }

    // The colours of `count` pixels downward from a point, each 0xRRGGBB.
    std::vector<std::uint32_t> column(Point from, int count) const;

private:
    const support::TestFolder _folder;
    support::RunningProgram _server;
    std::string _display;
    std::unique_ptr<support::RunningProgram> _bus;
    std::string _busAddress;
    std::unique_ptr<support::RunningProgram> _windowManager;
};
