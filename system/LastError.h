#pragma once

#include <cerrno>
#include <system_error>

// What errno says, as a value.
inline std::error_code lastError()
{
    return {errno, std::generic_category()};
}

// That of a system call which gave less than 0 for a failure.
inline std::error_code errorOf(long result)
{
    return result < 0 ? lastError() : std::error_code();
}
