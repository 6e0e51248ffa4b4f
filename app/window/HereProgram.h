// The program without its window: makes one archive of the files and tells how it goes, see
// HereJob.
#pragma once

#include <filesystem>
#include <vector>

namespace HereProgram
{

// The exit status for whoever started it; the process itself goes on as long as its notification
// leads to the archive. Throws std::system_error.
int run(char* programName, const std::vector<std::filesystem::path>& files);

} // namespace HereProgram
