// A session bus of a test's own, on which nobody starts services: what the test does not offer
// there is missing. It ends with the process that made it, however that ends.
#pragma once

#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

namespace support
{

class PrivateBus
{
public:
    // Throws std::runtime_error when there is none to be had.
    PrivateBus()
    {
        // It listens by the time it tells its address.
        if (!waitUntil([&] { return _daemon.out().find('\n') != std::string::npos; }))
            throw std::runtime_error("dbus-daemon does not start: " + _daemon.err());
        _address = _daemon.out().substr(0, _daemon.out().find('\n'));
    }

    // As DBUS_SESSION_BUS_ADDRESS names it.
    const std::string& address() const { return _address; }

private:
    // Without any folder of services.
    static std::vector<std::string> _daemonIn(const TestFolder& folder)
    {
        writeFile(folder / "bus.conf",
            "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
            "<policy context='default'><allow send_destination='*' eavesdrop='true'/>"
            "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>");
        return {"setpriv", "--pdeathsig", "TERM", "dbus-daemon", "--nofork", "--print-address=1",
            "--config-file", folder / "bus.conf"};
    }

    const TestFolder _folder; // of its configuration
    const RunningProgram _daemon{_daemonIn(_folder)};
    std::string _address;
};

} // namespace support
