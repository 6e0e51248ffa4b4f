#include "tools/tar/TarFormat.h"

#include "system/Utf8.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>

namespace
{

using TarFormat::blockSize;
using TarFormat::Entry;

// A header block's fields: where they are and how long.
struct Field {
    std::size_t offset;
    std::size_t size;
};
constexpr Field nameField{0, 100};
constexpr Field modeField{100, 8};
constexpr Field ownerField{108, 8};
constexpr Field groupField{116, 8};
constexpr Field sizeField{124, 12};
constexpr Field timeField{136, 12};
constexpr Field checksumField{148, 8};
constexpr Field typeField{156, 1};
constexpr Field linkField{157, 100};
constexpr Field magicField{257, 8};
constexpr Field prefixField{345, 155};

constexpr char paxType = 'x';

using HeaderBlock = std::array<char, blockSize>;

void put(HeaderBlock& block, Field field, std::string_view text)
{
    std::memcpy(block.data() + field.offset, text.data(), std::min(text.size(), field.size));
}

// A number fits a field of n bytes in n - 1 octal digits.
bool fits(std::int64_t value, Field field)
{
    return value >= 0 && value < (std::int64_t{1} << (3 * (field.size - 1)));
}

void putOctal(HeaderBlock& block, Field field, std::int64_t value)
{
    auto rest = static_cast<std::uint64_t>(fits(value, field) ? value : 0);
    for (std::size_t digit = field.size - 1; digit-- > 0; rest >>= 3)
        block[field.offset + digit] = static_cast<char>('0' + (rest & 7));
}

struct SplitName {
    std::string_view prefix;
    std::string_view name;
};

// The name as the two fields hold it, cut at a slash; none if they can't.
std::optional<SplitName> split(std::string_view name)
{
    if (name.size() <= nameField.size)
        return SplitName{"", name};
    // The first slash that leaves few enough bytes, but not the one a folder's name ends in.
    const std::size_t slash = name.find('/', name.size() - nameField.size - 1);
    if (slash == std::string_view::npos || slash == 0 || slash > prefixField.size
        || slash == name.size() - 1)
        return std::nullopt;
    return SplitName{name.substr(0, slash), name.substr(slash + 1)};
}

// "LENGTH KEY=VALUE\n", where the length counts its own digits.
std::string paxRecord(std::string_view key, std::string_view value)
{
    const std::size_t rest = key.size() + value.size() + 3;
    std::size_t length = rest + std::to_string(rest).size();
    if (rest + std::to_string(length).size() != length)
        ++length;
    std::string record = std::to_string(length);
    record += ' ';
    record += key;
    record += '=';
    record += value;
    record += '\n';
    return record;
}

// Seconds as a decimal fraction, of always nine digits so that the extended headers are alike;
// before 1970 whole ones, because bsdtar reads fractions of those as if they counted forward.
std::string decimal(const timespec& time)
{
    std::string text = std::to_string(time.tv_sec);
    if (time.tv_sec < 0 || time.tv_nsec == 0)
        return text;
    std::string fraction = std::to_string(1'000'000'000 + time.tv_nsec);
    fraction.front() = '.';
    return text + fraction;
}

std::string paxRecords(const Entry& entry)
{
    std::string records;
    const auto addNumber = [&](std::string_view key, std::int64_t value, Field field) {
        if (!fits(value, field))
            records += paxRecord(key, std::to_string(value));
    };
    if (!split(entry.name))
        records += paxRecord("path", entry.name);
    if (entry.linkTarget.size() > linkField.size)
        records += paxRecord("linkpath", entry.linkTarget);
    addNumber("size", static_cast<std::int64_t>(entry.size), sizeField);
    const timespec& time = entry.status.st_mtim;
    // Another name of a file has that one's time.
    if (!fits(time.tv_sec, timeField)
        || (time.tv_nsec != 0 && entry.type != TarFormat::Type::hardLink))
        records += paxRecord("mtime", decimal(time));
    addNumber("uid", entry.status.st_uid, ownerField);
    addNumber("gid", entry.status.st_gid, groupField);
    return records;
}

// Whole blocks, the last one filled up with zeros.
void append(ByteBuffer& bytes, std::string_view text)
{
    bytes.text(text);
    bytes.zeros(TarFormat::padding(text.size()));
}

void appendBlock(
    ByteBuffer& bytes, const SplitName& name, char type, std::uint64_t size, const Entry& entry)
{
    HeaderBlock block{};
    put(block, nameField, name.name);
    put(block, prefixField, name.prefix);
    putOctal(block, modeField, entry.status.st_mode & 07777);
    putOctal(block, ownerField, entry.status.st_uid);
    putOctal(block, groupField, entry.status.st_gid);
    putOctal(block, sizeField, static_cast<std::int64_t>(size));
    putOctal(block, timeField, entry.status.st_mtime);
    put(block, typeField, {&type, 1});
    put(block, linkField, entry.linkTarget);
    using namespace std::string_view_literals;
    put(block, magicField, "ustar\00000"sv);
    put(block, checksumField, "        ");
    std::uint32_t sum = 0;
    for (const char byte : block)
        sum += static_cast<unsigned char>(byte);
    putOctal(block, {checksumField.offset, checksumField.size - 1}, sum);
    block[checksumField.offset + 6] = '\0';
    append(bytes, {block.data(), block.size()});
}

} // namespace

namespace TarFormat
{

ByteBuffer header(const Entry& entry)
{
    ByteBuffer bytes;
    (void)bytes.room(3 * blockSize); // all that most take
    const std::string records = paxRecords(entry);
    if (!records.empty()) {
        // The same for all, since most entries may have one: it takes 42 bytes compressed, with the
        // entry's own name and status 50.
        FileStatus plain{};
        plain.st_mode = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;
        appendBlock(bytes, {"", "PaxHeader"}, paxType, records.size(),
            Entry{.type = {}, .name = {}, .linkTarget = {}, .status = plain});
        append(bytes, records);
    }
    // A stand-in for what does not fit, seen only by readers that do not know extended headers.
    const SplitName shortened{"", Utf8::shortened(entry.name, nameField.size)};
    appendBlock(bytes, split(entry.name).value_or(shortened), static_cast<char>(entry.type),
        entry.size, entry);
    return bytes;
}

std::size_t padding(std::uint64_t size)
{
    return (blockSize - size % blockSize) % blockSize;
}

} // namespace TarFormat
