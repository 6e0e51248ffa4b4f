// What nearly every test takes: GoogleTest, files, folders, programs and the environment of its
// own, and what they are looked at with.
#pragma once

#include "tests/support/EnvironmentVariable.h"
#include "tests/support/TestFolder.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

// Everything is to be tried, however long it takes, and not a sample of it.
inline bool isFullSweep()
{
    const char* const value = std::getenv("PARCELO_ALL_TESTS");
    return value != nullptr && *value == '1';
}

using namespace support;
using namespace std::literals;
namespace fs = std::filesystem;
