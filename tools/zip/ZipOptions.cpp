#include "tools/zip/ZipOptions.h"

#include "tools/common/Failure.h"
#include "tools/common/ItemName.h"
#include "tools/common/Messages.h"

#include <string_view>

namespace
{

constexpr std::string_view usage = "usage: zip [-0...-9] -y -r ARCHIVE ./ITEM [-x '*/.DS_Store']";
constexpr std::string_view excludePattern = "*/.DS_Store";

Failure wrong(const std::string& what)
{
    return {FailureKind::usage, what + "\n" + std::string(usage)};
}

bool isLevel(std::string_view argument)
{
    return argument.size() == 2 && argument[0] == '-' && argument[1] >= '0' && argument[1] <= '9';
}

} // namespace

ZipOptions ZipOptions::parse(std::span<const char* const> arguments)
{
    ZipOptions options;
    const auto isNext = [&](std::string_view wanted) {
        return !arguments.empty() && arguments.front() == wanted;
    };
    const auto take = [&] {
        const std::string_view argument = arguments.front();
        arguments = arguments.subspan(1);
        return argument;
    };

    if (!arguments.empty() && isLevel(arguments.front()))
        options.level = take()[1] - '0';
    for (const std::string_view required : {"-y", "-r"}) {
        if (!isNext(required))
            throw wrong(std::string(required) + " is missing");
        take();
    }
    if (arguments.size() < 2)
        throw wrong("the archive and an item are needed");
    options.archive = take();
    if (options.archive.empty())
        throw wrong("the archive has no name");
    options.item = itemName(take());
    if (options.item.empty())
        throw wrong("the item is not one name in the current folder");
    if (arguments.empty())
        return options;
    if (arguments.size() != 2 || take() != "-x" || take() != excludePattern)
        throw wrong("after the item, only -x '*/.DS_Store' is understood");
    options.excludesDSStore = true;
    return options;
}
