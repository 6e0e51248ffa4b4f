// Sets a variable of the test's environment, or without a value removes it, for as long as this
// lives. No other thread may be running that could read the environment meanwhile.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace support
{

class EnvironmentVariable
{
public:
    EnvironmentVariable(std::string name, const std::optional<std::string>& value)
        : _name(std::move(name))
    {
        if (const char* const former = std::getenv(_name.c_str()))
            _former = former;
        set(value);
    }
    ~EnvironmentVariable() { set(_former); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

    void set(const std::optional<std::string>& value) const
    {
        value ? ::setenv(_name.c_str(), value->c_str(), 1) : ::unsetenv(_name.c_str());
    }

private:
    const std::string _name;
    std::optional<std::string> _former;
};

} // namespace support
