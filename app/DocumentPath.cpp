#include "app/DocumentPath.h"

#include "platform/base/PathString.h"

namespace fs = std::filesystem;

fs::path documentPath(const fs::path& file)
{
    const std::string name = PathString::lastPathComponent(file.native());
    if (name == "." || name == "..")
        return fs::canonical(file);
    const fs::path folder
        = PathString::stringByDeletingLastPathComponent(fs::absolute(file).native());
    return folder / name;
}
