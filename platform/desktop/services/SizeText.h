// Sizes as people read them.
#pragma once

#include <QString>

namespace SizeText
{

// "312 MB", by powers of 1,000 as file managers count, in the user's language: with a decimal as
// long as there is one digit before it.
[[nodiscard]] QString of(double bytes);

} // namespace SizeText
