// A display in memory with a window manager, and a session bus. They end with the process that made
// them, however it ends.
#pragma once

#include "tests/display/VirtualDisplay.h"
#include "tests/support/PrivateBus.h"

class DesktopSession : public VirtualDisplay
{
public:
    DesktopSession()
    {
        const support::RunOptions onDisplay{
            .environment = std::vector<std::string>{
                "DISPLAY=" + display, "HOME=" + _folder.path().native(), "LC_ALL=C.UTF-8"}};
        _windowManager = std::make_unique<support::RunningProgram>(
            std::vector<std::string>{"openbox"}, onDisplay);
        const auto isManaged = [&] {
            return support::run({"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"}, onDisplay)
                       .out.find("window id")
                != std::string::npos;
        };
        if (!support::waitUntil(isManaged))
            throw std::runtime_error("openbox does not start: " + _windowManager->err());
    }

    const support::PrivateBus bus;

private:
    const support::TestFolder _folder;
    std::unique_ptr<support::RunningProgram> _windowManager; // gone before the display
};
