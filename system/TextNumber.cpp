#include "system/TextNumber.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace
{

std::string_view withoutLeadingSpace(std::string_view text)
{
    return text.substr(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
}

// Without a plus sign, which std::from_chars does not know.
std::string_view withoutPlus(std::string_view text)
{
    const bool isSigned = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return isSigned ? text.substr(1) : text;
}

template <typename Number> Number numberOf(std::string_view text)
{
    text = withoutPlus(withoutLeadingSpace(text));
    Number number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc::result_out_of_range)
        return number;
    using Limits = std::numeric_limits<Number>;
    return text.front() == '-' ? Limits::lowest() : Limits::max();
}

} // namespace

std::int32_t TextNumber::intValue(std::string_view text)
{
    return numberOf<std::int32_t>(text);
}

std::int64_t TextNumber::integerValue(std::string_view text)
{
    return numberOf<std::int64_t>(text);
}

double TextNumber::doubleValue(std::string_view text)
{
    text = withoutPlus(withoutLeadingSpace(text));
    const auto digits = text.substr(text.starts_with('-') ? 1 : 0);
    if (digits.empty() || digits.find_first_not_of("0123456789.") == 0)
        return 0; // "inf" and "nan" are words
    double number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() ? number : 0;
}

bool TextNumber::boolValue(std::string_view text)
{
    text = withoutLeadingSpace(text);
    if (!text.empty() && (text.front() == '+' || text.front() == '-'))
        text.remove_prefix(1);
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    return !text.empty() && std::string_view("YyTt123456789").find(text.front()) != text.npos;
}

std::int64_t TextNumber::truncated(double number)
{
    using Limits = std::numeric_limits<std::int64_t>;
    constexpr double end = 9223372036854775808.0; // the first above the range
    if (number >= end)
        return Limits::max();
    if (number < -end)
        return Limits::min();
    return number == number ? static_cast<std::int64_t>(number) : 0; // no number: 0
}
