// The program with its window, until the user quits.
#pragma once

#include <filesystem>
#include <vector>

class WindowedProgram
{
public:
    // The program's exit status. The files arrive as if opened through the program's icon. Throws
    // std::system_error when the system has no descriptors left.
    static int run(char* programName, const std::vector<std::filesystem::path>& files);
};
