#include "platform/base/SearchPaths.h"

#include <cstdlib>

std::filesystem::path SearchPaths::temporaryDirectory()
{
    const char* folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder == '/' ? folder : "/tmp";
}
