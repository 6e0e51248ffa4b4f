#pragma once

#include <cstdint>

// 2001-01-01 00:00:00 UTC, from which property lists and stored settings count their dates, in
// seconds since 1970-01-01 00:00:00 UTC.
constexpr std::int64_t referenceDateInUnixSeconds = 978'307'200;
