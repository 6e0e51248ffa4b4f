// What the fuzz targets share. Each reads bytes of anybody's making with one of our readers; the
// sanitizers watch, and what the reader promises is looked at besides.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace Fuzzing
{

void test(std::string_view input); // is each target's own

// Ends the program, which makes libFuzzer keep the input.
inline void require(bool holds, std::string_view promise)
{
    if (holds)
        return;
    std::cerr << "broken promise: " << promise << '\n';
    std::abort();
}

} // namespace Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzzing::test({reinterpret_cast<const char*>(data), size});
    return 0;
}
