// What one run is asked to do:  zip [-0…-9] -y -r ARCHIVE ./ITEM [-x '*/.DS_Store']
#pragma once

#include <span>
#include <string>

struct ZipOptions {
    int level = 6;
    std::string archive;
    std::string item; // one name in the current folder
    bool excludesDSStore = false;

    // `arguments` without the program's name. What comes after the archive is taken literally, so
    // no file's name can pass for an option. Throws a Failure of kind Usage on anything else.
    static ZipOptions parse(std::span<const char* const> arguments);
};
