// What one run is asked to do:  tar [--exclude .DS_Store] -zhcf ARCHIVE FOLDER
#pragma once

#include <span>
#include <string>

struct TarOptions {
    std::string archive;
    std::string folder; // one name in the current folder
    bool excludesDSStore = false;

    // `arguments` without the program's name. What comes after -zhcf is taken literally, so no
    // file's name can pass for an option. Throws a Failure of kind Usage on anything else.
    static TarOptions parse(std::span<const char* const> arguments);
};
