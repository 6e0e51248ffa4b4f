// A session bus of a test's own, on which nobody starts services: what the test does not offer
// there is missing. It ends with the process that made it, however that ends.
#pragma once

#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <string>

namespace support
{

class PrivateBus
{
public:
    // Throws std::runtime_error when there is none to be had.
    PrivateBus();

    // As DBUS_SESSION_BUS_ADDRESS names it.
    const std::string& address() const { return _address; }

private:
    const TestFolder _folder; // of its configuration
    const RunningProgram _daemon;
    std::string _address;
};

} // namespace support
