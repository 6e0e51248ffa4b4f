// HTML that somebody else wrote, to be read as plain text: nothing in it is loaded, run or laid
// out. Takes time in proportion to its length, whatever is in it.
#pragma once

#include <QString>

namespace HTMLText
{

// Without tags, comments, scripts and styles; blocks begin new lines and list items a bullet. Text
// that holds no tag keeps its lines.
[[nodiscard]] QString plainText(const QString& html);

} // namespace HTMLText
