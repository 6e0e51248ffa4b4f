#include "tests/support/PrivateBus.h"

#include <stdexcept>

namespace support
{

namespace
{

// Without any folder of services.
constexpr auto configuration = R"(<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/> <allow eavesdrop="true"/> <allow own="*"/>
  </policy>
</busconfig>
)";

std::vector<std::string> daemonIn(const TestFolder& folder)
{
    writeFile(folder / "bus.conf", configuration);
    return {"setpriv", "--pdeathsig", "TERM", "dbus-daemon", "--nofork", "--print-address=1",
        "--config-file", folder / "bus.conf"};
}

} // namespace

PrivateBus::PrivateBus()
    : _daemon(daemonIn(_folder))
{
    // It listens by the time it tells its address.
    if (!waitUntil([&] { return _daemon.out().find('\n') != std::string::npos; }))
        throw std::runtime_error("dbus-daemon does not start: " + _daemon.err());
    _address = _daemon.out().substr(0, _daemon.out().find('\n'));
}

} // namespace support
