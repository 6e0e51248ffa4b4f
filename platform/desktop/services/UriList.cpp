#include "platform/desktop/services/UriList.h"

#include <algorithm>
#include <optional>

namespace
{

using UriList::Refusal;

constexpr std::string_view hexDigits = "0123456789ABCDEF";

// Like their counterparts in the C library, but the same in every locale.
bool isLetter(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

bool isDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

char lowerCase(char byte)
{
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

bool isEqualIgnoringCase(std::string_view one, std::string_view other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
        [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

// The value of a hexadecimal digit; -1 for any other byte.
int digitValue(char byte)
{
    if (isDigit(byte))
        return byte - '0';
    const char lower = lowerCase(byte);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Nothing for an escape that is none, and for a NUL, which no path can hold.
std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        char byte = text[at];
        if (byte == '%') {
            const int high = at + 2 < text.size() ? digitValue(text[at + 1]) : -1;
            const int low = high >= 0 ? digitValue(text[at + 2]) : -1;
            if (low < 0)
                return std::nullopt;
            byte = static_cast<char>(high * 16 + low);
            at += 2;
        }
        if (byte == '\0')
            return std::nullopt;
        bytes += byte;
    }
    return bytes;
}

// The scheme of a URI (RFC 3986, 3.1) without its colon; empty when the line has none.
std::string_view schemeOf(std::string_view line)
{
    const auto end = std::find_if_not(line.begin(), line.end(), [](char byte) {
        return isLetter(byte) || isDigit(byte) || byte == '+' || byte == '-' || byte == '.';
    });
    if (end == line.end() || *end != ':' || !isLetter(line.front()))
        return {};
    return line.substr(0, static_cast<std::size_t>(end - line.begin()));
}

void addLine(std::string_view line, std::string_view hostName, UriList::FilePaths& result)
{
    const auto refuse = [&](Refusal reason) {
        result.refused.push_back({std::string(line), reason});
    };
    const std::string_view scheme = schemeOf(line);
    if (scheme.empty())
        return refuse(Refusal::malformed);
    if (!isEqualIgnoringCase(scheme, "file"))
        return refuse(Refusal::otherScheme);

    std::string_view rest = line.substr(scheme.size() + 1);
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        const std::string_view host = rest.substr(0, rest.find('/'));
        if (!host.empty() && !isEqualIgnoringCase(host, "localhost")
            && !isEqualIgnoringCase(host, hostName))
            return refuse(Refusal::otherHost);
        rest.remove_prefix(host.size());
    }
    // A query or a fragment is refused: whoever forgot to escape a name's # or ? must not be given
    // the file whose name ends before it.
    const bool isPath = rest.starts_with('/') && rest.find_first_of("?#") == std::string_view::npos;
    std::optional<std::string> path = isPath ? percentDecoded(rest) : std::nullopt;
    if (!path)
        return refuse(Refusal::malformed);
    while (path->size() > 1 && path->back() == '/')
        path->pop_back();
    result.paths.emplace_back(*std::move(path));
}

// Takes the first line off the list, without its line break.
std::string_view nextLine(std::string_view& list)
{
    const auto end = std::min(list.find('\n'), list.size());
    std::string_view line = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

} // namespace

UriList::FilePaths UriList::filePaths(std::string_view list, std::string_view hostName)
{
    while (list.ends_with('\0')) // some versions of GTK hand over the end of a C string too
        list.remove_suffix(1);
    FilePaths result;
    while (!list.empty()) {
        const std::string_view line = nextLine(list);
        if (!line.empty() && line.front() != '#')
            addLine(line, hostName, result);
    }
    return result;
}

std::optional<std::filesystem::path> UriList::filePath(
    std::string_view uri, std::string_view hostName)
{
    FilePaths found = filePaths(uri, hostName);
    if (found.paths.size() != 1 || uri.find_first_of("\r\n") != std::string_view::npos)
        return std::nullopt;
    return std::move(found.paths.front());
}

UriList::FilePaths UriList::copiedFilePaths(std::string_view list, std::string_view hostName)
{
    std::string_view rest = list;
    const std::string_view first = nextLine(rest);
    return filePaths(first == "copy" || first == "cut" ? rest : list, hostName);
}

std::string UriList::fileUri(const std::filesystem::path& path)
{
    return "file://" + percentEncoded(path.native(), "/");
}

std::string UriList::percentEncoded(std::string_view bytes, std::string_view kept)
{
    constexpr std::string_view unreservedMarks = "-._~";
    std::string text;
    for (const char byte : bytes) {
        if (isLetter(byte) || isDigit(byte) || unreservedMarks.find(byte) != std::string_view::npos
            || kept.find(byte) != std::string_view::npos) {
            text += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        text += {'%', hexDigits[value / 16], hexDigits[value % 16]};
    }
    return text;
}
