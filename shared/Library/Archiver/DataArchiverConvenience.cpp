#include "shared/Library/Archiver/DataArchiverConvenience.h"

#include "system/Utf8.h"

#include <algorithm>

int DataArchiverConvenience::numberOfLines(std::string_view data)
{
    return Utf8::isAscii(data) ? static_cast<int>(std::ranges::count(data, '\n')) : -1;
}
