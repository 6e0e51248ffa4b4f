#include "tools/ditto/DittoOptions.h"

#include "tools/common/Failure.h"
#include "tools/common/ItemName.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace
{

constexpr std::array<std::string_view, 5> archiveForm{
    "-V", "-c", "-k", "--keepParent", "--sequesterRsrc"};
constexpr std::array<std::string_view, 1> copyForm{"-rsrcFork"};

Failure wrong(const std::string& what)
{
    return {FailureKind::usage,
        what
            + "\nusage: ditto -V -c -k --keepParent --sequesterRsrc ./ITEM ARCHIVE"
              "\n       ditto -rsrcFork SOURCE TARGET"};
}

// Whether the arguments are those of a form, and the two names.
template <std::size_t size>
bool isOf(const std::array<std::string_view, size>& form, std::span<const char* const> arguments)
{
    return arguments.size() == size + 2 && std::equal(form.begin(), form.end(), arguments.begin());
}

} // namespace

DittoOptions DittoOptions::parse(std::span<const char* const> arguments)
{
    DittoOptions options{.makesArchive = isOf(archiveForm, arguments), .source = {}, .target = {}};
    if (!options.makesArchive && !isOf(copyForm, arguments))
        throw wrong("the arguments are of neither form");
    options.source = arguments[arguments.size() - 2];
    options.target = arguments.back();
    if (options.makesArchive)
        options.source = itemName(options.source);
    if (options.source.empty())
        throw wrong(options.makesArchive ? "the item is not one name in the current folder"
                                         : "the source has no name");
    if (options.target.empty())
        throw wrong("the target has no name");
    return options;
}
