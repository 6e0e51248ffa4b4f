// A Wayland desktop: sway, whose screen is a window on a display in memory, so that what xdotool
// does there is done by its user. Sway will not run as root, and is nobody then.
#pragma once

#include "tests/display/VirtualDisplay.h"
#include "tests/support/PrivateBus.h"

#include <unistd.h>

class WaylandSession
{
public:
    using Strings = std::vector<std::string>;

    WaylandSession()
    {
        namespace fs = std::filesystem;
        support::writeFile(_folder / "config", R"(xwayland disable
default_border none
focus_on_window_activation focus
for_window [app_id=".*"] floating enable
for_window [app_id="thunar"] move absolute position 0 0
for_window [title="^Parcelo$"] move absolute position 600 0
)");
        fs::create_directory(_folder / "run");
        fs::permissions(_folder / "run", fs::perms::owner_all);
        fs::permissions(_folder.path(), fs::perms::others_exec, fs::perm_options::add);
        fs::permissions(_folder / "config", fs::perms::others_read, fs::perm_options::add);
        Strings command{"setpriv", "--pdeathsig", "TERM"};
        if (::geteuid() == 0) {
            command.insert(
                command.end(), {"--reuid", "65534", "--regid", "65534", "--clear-groups"});
            EXPECT_EQ(::chown((_folder / "run").c_str(), 65534, 65534), 0);
        }
        command.insert(command.end(), {"sway", "-c", _folder / "config"});
        _sway = std::make_unique<support::RunningProgram>(command,
            support::RunOptions{.environment
                = Strings{"DISPLAY=" + _screen.display, "XDG_RUNTIME_DIR=" + _runtimeFolder(),
                    "HOME=/", "PATH=/usr/bin", "SWAYSOCK=" + _controlSocket(), "WLR_BACKENDS=x11",
                    "WLR_RENDERER=pixman", "LC_ALL=C.UTF-8"}});
        if (!support::waitUntil([&] {
                return tell({"-t", "get_seats"}).find("pointer") < std::string::npos;
            }))
            throw std::runtime_error("sway does not start: " + _sway->err());
    }

    // What a program on this desktop has in its environment besides a home.
    Strings environment() const
    {
        return {"WAYLAND_DISPLAY=" + _runtimeFolder() + "/wayland-1", "QT_QPA_PLATFORM=wayland",
            "GDK_BACKEND=wayland", "GTK_THEME=Adwaita", "NO_AT_BRIDGE=1", "LC_ALL=C.UTF-8",
            "DBUS_SESSION_BUS_ADDRESS=" + _bus.address()};
    }
    // What sway says to a message.
    std::string tell(Strings words) const
    {
        words.insert(words.begin(), {"swaymsg", "-s", _controlSocket()});
        return support::run(words).out;
    }
    void xdotool(Strings words) const
    {
        words.insert(words.begin(), "xdotool");
        (void)support::run(words, {.environment = Strings{"DISPLAY=" + _screen.display}});
    }
    std::vector<std::uint32_t> column(QPoint from, int count) const
    {
        return _screen.column(from, count);
    }

private:
    std::string _runtimeFolder() const { return _folder / "run"; }
    std::string _controlSocket() const { return _folder / "run/control"; }

    const VirtualDisplay _screen;
    const support::PrivateBus _bus;
    const support::TestFolder _folder;
    std::unique_ptr<support::RunningProgram> _sway;
};
