#include "platform/base/Bundle.h"

#include <system_error>
#include <utility>

namespace
{

std::filesystem::path executableFolder()
{
    std::error_code unreadable; // leaves an empty path: a bundle without resources
    return std::filesystem::read_symlink("/proc/self/exe", unreadable).parent_path();
}

} // namespace

Bundle::Bundle(std::filesystem::path folder)
    : _folder(std::move(folder))
{
}

Bundle& Bundle::_main()
{
    static Bundle bundle(executableFolder().parent_path() / "libexec" / "parcelo");
    return bundle;
}

const Bundle& Bundle::main()
{
    return _main();
}

void Bundle::setMain(Bundle bundle)
{
    _main() = std::move(bundle);
}

std::optional<std::filesystem::path> Bundle::pathForResource(
    const std::string& resource, const std::string& ofType) const
{
    const auto path = _folder / "Contents" / "Resources"
        / (ofType.empty() ? resource : resource + "." + ofType);
    std::error_code missing;
    if (!std::filesystem::exists(path, missing))
        return std::nullopt;
    return path;
}
