#include "shared/Library/DataArchiverConvenience.h"

#include "shared/Library/ASCII.h"

#include <algorithm>

int DataArchiverConvenience::numberOfLines(std::string_view data)
{
    return isASCII(data) ? static_cast<int>(std::ranges::count(data, '\n')) : -1;
}
