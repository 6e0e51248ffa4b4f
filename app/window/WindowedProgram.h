// The program with its window, until the user quits: one for each session bus. What a later start
// is asked for, this one does. Main thread.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

class WindowedProgram
{
public:
    struct Start {
        // "--email": the files are for a new message; "--preferences": those are shown;
        // "--gapplication-service": there is no window until somebody asks for one, on the bus.
        std::string option = {};
        std::vector<std::filesystem::path> files = {}; // as if opened through the program's icon
    };

    // The program's exit status. Throws std::system_error when the system has no descriptors left.
    static int run(char* programName, const Start& start);
};
