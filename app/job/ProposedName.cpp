#include "app/job/ProposedName.h"

#include "system/PathString.h"

namespace
{

constexpr std::size_t longestFileName = 255; // bytes

// The longest beginning that does not end inside a UTF-8 sequence.
std::string shortened(const std::string& text, std::size_t size)
{
    const auto continues = [&](std::size_t at) { return (text[at] & 0xc0) == 0x80; };
    if (text.size() <= size)
        return text;
    std::size_t cut = size;
    while (cut > 0 && size - cut < 3 && continues(cut))
        --cut;
    return text.substr(0, continues(cut) ? size : cut); // no UTF-8: anywhere
}

} // namespace

std::string proposedName(const std::vector<std::filesystem::path>& items, bool keepsExtension,
    const std::string& archiveExtension)
{
    std::string untitled = "Untitled";
    if (items.size() != 1)
        return untitled;
    const std::string own = PathString::lastPathComponent(items.front().native());
    const std::string name = keepsExtension ? own : PathString::stringByDeletingPathExtension(own);
    if (own == "/" || name == "." || name == "..") // of "...txt", say
        return untitled;
    return shortened(name, longestFileName - archiveExtension.size());
}
