#include "app/job/DocumentPath.h"

#include "system/PathString.h"

namespace fs = std::filesystem;

fs::path documentPath(const fs::path& file, std::error_code& failure)
{
    const std::string name = PathString::lastPathComponent(file.native());
    if (name == "." || name == "..")
        return fs::canonical(file, failure);
    const fs::path folder
        = PathString::stringByDeletingLastPathComponent(fs::absolute(file, failure).native());
    return folder / name;
}

bool isAddress(const fs::path& file)
{
    std::error_code missing;
    return file.native().find(":/") != std::string::npos
        && !fs::exists(fs::symlink_status(file, missing));
}
