#include "tools/tar/TarOptions.h"

#include "tools/common/Failure.h"
#include "tools/common/ItemName.h"

#include <string_view>

namespace
{

Failure wrong(const std::string& what)
{
    return {FailureKind::usage, what + "\nusage: tar [--exclude .DS_Store] -zhcf ARCHIVE FOLDER"};
}

} // namespace

TarOptions TarOptions::parse(std::span<const char* const> arguments)
{
    using namespace std::string_view_literals;
    TarOptions options;
    if (arguments.size() >= 2 && arguments[0] == "--exclude"sv) {
        if (arguments[1] != ".DS_Store"sv)
            throw wrong("only .DS_Store can be excluded");
        options.excludesDSStore = true;
        arguments = arguments.subspan(2);
    }
    if (arguments.size() != 3 || arguments[0] != "-zhcf"sv)
        throw wrong("-zhcf, the archive and a folder are needed");
    options.archive = arguments[1];
    if (options.archive.empty())
        throw wrong("the archive has no name");
    options.folder = itemName(arguments[2]);
    if (options.folder.empty())
        throw wrong("the folder is not one name in the current folder");
    return options;
}
