// What one run is asked to do:  ditto -V -c -k --keepParent --sequesterRsrc ./ITEM ARCHIVE
//                         or:  ditto -rsrcFork SOURCE TARGET
#pragma once

#include <span>
#include <string>

struct DittoOptions {
    bool makesArchive = false;
    std::string source; // for an archive, one name in the current folder
    std::string target;

    // `arguments` without the program's name. The last two are taken literally, so no file's name
    // can pass for an option. Throws a Failure of kind Usage on anything else.
    static DittoOptions parse(std::span<const char* const> arguments);
};
