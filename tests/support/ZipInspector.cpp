#include "tests/support/ZipInspector.h"

#include "tests/support/Files.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string_view>

#include <fcntl.h>
#include <iconv.h>
#include <sys/mman.h>

namespace support
{

namespace
{

constexpr std::uint32_t localSignature = 0x04034b50;
constexpr std::uint32_t centralSignature = 0x02014b50;
constexpr std::uint32_t endSignature = 0x06054b50;
constexpr std::uint32_t zip64EndSignature = 0x06064b50;
constexpr std::uint32_t zip64LocatorSignature = 0x07064b50;
constexpr std::uint64_t sentinel32 = 0xFFFFFFFF;
constexpr std::uint64_t sentinel16 = 0xFFFF;
constexpr std::uint16_t zip64Extra = 0x0001;
constexpr std::uint16_t ntfsExtra = 0x000a;
constexpr std::uint16_t unixTimeExtra = 0x5455;
constexpr std::uint16_t unicodeNameExtra = 0x7075;

// Reads little-endian numbers one after another; reading past the end throws.
class Cursor
{
public:
    explicit Cursor(std::string_view bytes, std::uint64_t position = 0)
        : _bytes(bytes)
        , _position(position)
    {
    }
    std::uint64_t position() const { return _position; }
    bool atEnd() const { return _position == _bytes.size(); }
    std::string_view text(std::size_t size)
    {
        if (_position > _bytes.size() || size > _bytes.size() - _position)
            throw std::runtime_error("a record reaches beyond its end");
        _position += size;
        return _bytes.substr(_position - size, size);
    }
    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::uint64_t u64() { return number(8); }

private:
    std::uint64_t number(std::size_t size)
    {
        std::uint64_t value = 0;
        const std::string_view bytes = text(size);
        for (std::size_t i = size; i > 0; --i)
            value = value << 8 | static_cast<unsigned char>(bytes[i - 1]);
        return value;
    }
    std::string_view _bytes;
    std::uint64_t _position;
};

bool isUtf8(std::string name)
{
    const iconv_t converter = iconv_open("UTF-32", "UTF-8");
    std::string converted(4 * name.size() + 4, '\0');
    char* in = name.data();
    char* out = converted.data();
    std::size_t inLeft = name.size();
    std::size_t outLeft = converted.size();
    iconv(converter, &in, &inLeft, &out, &outLeft);
    iconv_close(converter);
    return inLeft == 0;
}

// What a central and a local record say in the same fields.
struct Record {
    explicit Record(Cursor& cursor)
        : versionNeeded(cursor.u16())
        , flags(cursor.u16())
        , method(cursor.u16())
        , dosTime(cursor.u16())
        , dosDate(cursor.u16())
        , crc(cursor.u32())
        , compressedSize(cursor.u32())
        , size(cursor.u32())
        , nameSize(cursor.u16())
        , extraSize(cursor.u16())
    {
    }
    bool operator==(const Record&) const = default;

    std::uint16_t versionNeeded, flags, method, dosTime, dosDate;
    std::uint32_t crc;
    std::uint64_t compressedSize, size;
    std::uint16_t nameSize, extraSize;
};

class Inspector
{
public:
    Inspector(std::string_view bytes, std::size_t foreignEntries)
        : _bytes(bytes)
        , _foreignEntries(foreignEntries)
    {
    }

    ZipReport report()
    {
        try {
            readEnd();
            readCentralRecords();
            checkLocalRecords();
        } catch (const std::runtime_error& error) {
            require(false, error.what());
        }
        return std::move(_report);
    }

private:
    void require(bool holds, const std::string& complaint)
    {
        if (!holds)
            _report.complaints.push_back(_current + complaint);
    }

    void readEnd()
    {
        constexpr std::size_t endSize = 22;
        std::uint64_t endAt = _bytes.rfind("PK\5\6");
        if (endAt == std::string_view::npos || endAt + endSize > _bytes.size())
            throw std::runtime_error("no end record");
        Cursor end(_bytes, endAt + 4);
        require(end.u32() == 0, "the end record speaks of several disks");
        const std::uint64_t countHere = end.u16();
        _count = end.u16();
        require(countHere == _count, "the end record has two different counts");
        const std::uint64_t size = end.u32();
        _centralOffset = end.u32();
        _centralEnd = endAt;
        _report.comment = end.text(end.u16());
        require(end.atEnd(), "something follows the end record");

        constexpr std::uint64_t locatorSize = 20;
        _report.hasZip64End = endAt >= locatorSize
            && Cursor(_bytes, endAt - locatorSize).u32() == zip64LocatorSignature;
        const bool asksForIt
            = _count == sentinel16 || size == sentinel32 || _centralOffset == sentinel32;
        require(asksForIt == _report.hasZip64End,
            asksForIt ? "the zip64 end is missing" : "the zip64 end is not needed");
        if (_report.hasZip64End)
            readZip64End(endAt - locatorSize);
        else
            require(_centralOffset + size == endAt, "the directory does not end at its end");
    }

    void readZip64End(std::uint64_t locatorAt)
    {
        constexpr std::uint64_t recordSize = 56;
        _centralEnd = Cursor(_bytes, locatorAt + 8).u64();
        Cursor end(_bytes, _centralEnd);
        require(end.u32() == zip64EndSignature && end.u64() == recordSize - 12
                && _centralEnd + recordSize == locatorAt,
            "the zip64 end is not where its locator says");
        end.text(12); // versions, disks
        const std::uint64_t countHere = end.u64();
        _count = end.u64();
        require(countHere == _count, "the zip64 end has two different counts");
        const std::uint64_t size = end.u64();
        _centralOffset = end.u64();
        require(_centralOffset + size == _centralEnd, "the directory does not end at its end");
        require(_count >= sentinel16 || size >= sentinel32 || _centralOffset >= sentinel32,
            "the zip64 end is not needed");
    }

    void readCentralRecords()
    {
        std::set<std::string> names;
        Cursor cursor(_bytes, _centralOffset);
        for (std::uint64_t i = 0; i < _count; ++i) {
            readCentralRecord(cursor);
            const std::string& name = _report.entries.back().name;
            require(names.insert(name).second, "is there twice");
            require(!name.starts_with('/') && !name.starts_with("./"), "is not relative");
        }
        _current.clear();
        require(cursor.position() == _centralEnd, "the directory holds more than its entries");
    }

    void readCentralRecord(Cursor& cursor)
    {
        if (cursor.u32() != centralSignature)
            throw std::runtime_error("a central record lacks its signature");
        const std::uint16_t madeBy = cursor.u16();
        Record record(cursor);
        const std::size_t commentSize = cursor.u16();
        require(cursor.u16() == 0, "is said to be on another disk");
        cursor.u16(); // internal attributes
        const unsigned mode = cursor.u32() >> 16;
        std::uint64_t localOffset = cursor.u32();
        const std::string name(cursor.text(record.nameSize));
        _current = name + ": ";
        const ZipExtras extras = readExtras(cursor.text(record.extraSize));
        cursor.text(commentSize);

        const bool ours = _report.entries.size() >= _foreignEntries;
        resolveZip64(extras, {&record.size, &record.compressedSize, &localOffset}, ours);
        _report.entries.push_back({.name = name,
            .versionNeeded = record.versionNeeded,
            .flags = record.flags,
            .method = record.method,
            .compressedSize = record.compressedSize,
            .size = record.size,
            .localOffset = localOffset,
            .mode = mode,
            .dosDate = record.dosDate,
            .extras = extras});
        _records.push_back(record);
        if (ours) {
            require(madeBy >> 8 == 3, "was not made on Unix");
            checkAsOurs(_report.entries.back());
        }
    }

    ZipExtras readExtras(std::string_view bytes)
    {
        ZipExtras extras;
        Cursor cursor(bytes);
        while (!cursor.atEnd()) {
            const std::uint16_t id = cursor.u16();
            require(extras.emplace(id, cursor.text(cursor.u16())).second, "has a field twice");
        }
        return extras;
    }

    // Takes the numbers that are all ones from the zip64 field; ours holds exactly those, and
    // one of them at least is truly too big.
    void resolveZip64(const ZipExtras& extras, std::vector<std::uint64_t*> numbers, bool ours)
    {
        std::erase_if(numbers, [](const std::uint64_t* number) { return *number != sentinel32; });
        const auto field = extras.find(zip64Extra);
        if (ours)
            require(
                numbers.empty() == (field == extras.end()), "has zip64 without need, or lacks it");
        if (numbers.empty() || field == extras.end())
            return;
        Cursor cursor(field->second);
        for (std::uint64_t* number : numbers)
            *number = cursor.u64();
        const bool needed = std::any_of(numbers.begin(), numbers.end(),
            [](const std::uint64_t* number) { return *number >= sentinel32; });
        require(!ours || (needed && cursor.atEnd()), "has more zip64 numbers than it needs");
    }

    void checkAsOurs(ZipEntry& entry)
    {
        constexpr unsigned utf8Flag = 0x0800;
        constexpr unsigned levelFlags = 0x0006;
        const bool folder = entry.name.ends_with('/');
        const bool ascii = std::all_of(
            entry.name.begin(), entry.name.end(), [](char c) { return (c & 0x80) == 0; });
        const unsigned flags = !ascii && isUtf8(entry.name) ? utf8Flag : 0;
        const bool zip64 = entry.extras.contains(zip64Extra);
        const unsigned version = zip64 ? 45 : entry.method == 8 || folder ? 20 : 10;
        require((entry.flags & ~levelFlags) == flags, "has the wrong flags");
        require(entry.method == 0 || entry.method == 8, "has an unknown method");
        require(entry.method == 8 || entry.size == entry.compressedSize, "is stored shorter");
        require(entry.versionNeeded == version, "asks for the wrong version");
        require(folder == ((entry.mode & 0170000u) == 0040000u), "has the mode of another kind");
        require(!folder || entry.size == 0, "is a folder with content");
        require(!entry.extras.contains(unicodeNameExtra), "has a second name");
        readTime(entry);
    }

    void readTime(ZipEntry& entry)
    {
        constexpr std::int64_t secondsFrom1601 = 11644473600;
        constexpr std::int64_t ticksInSecond = 10'000'000;
        const auto unixTime = entry.extras.find(unixTimeExtra);
        const auto ntfs = entry.extras.find(ntfsExtra);
        require((unixTime == entry.extras.end()) != (ntfs == entry.extras.end()),
            "must have one of the two time fields");
        if (unixTime != entry.extras.end()) {
            entry.time = Cursor(unixTime->second, 1).u32();
            require(entry.time < 0x80000000, "has a time that wraps");
        } else if (ntfs != entry.extras.end()) {
            require(ntfs->second.size() == 32, "has a time field of another size");
            const auto ticks = static_cast<std::int64_t>(Cursor(ntfs->second, 8).u64());
            entry.time = ticks / ticksInSecond - secondsFrom1601;
            require(entry.time < 0 || entry.time >= 0x80000000, "has a long time without need");
        }
    }

    // In the order of their places, each local record and its data must begin where the one
    // before it ends.
    void checkLocalRecords()
    {
        std::map<std::uint64_t, std::size_t> byPlace;
        for (std::size_t i = 0; i < _report.entries.size(); ++i)
            byPlace[_report.entries[i].localOffset] = i;
        std::uint64_t expected = 0;
        for (const auto& [place, index] : byPlace) {
            _current = _report.entries[index].name + ": ";
            require(place == expected, "does not begin where the last one ends");
            expected = endOfLocal(index);
        }
        _current.clear();
        require(expected == _centralOffset, "there is a gap before the central directory");
    }

    std::uint64_t endOfLocal(std::size_t index)
    {
        Cursor cursor(_bytes, _report.entries[index].localOffset);
        require(cursor.u32() == localSignature, "has no local record");
        Record local(cursor);
        const std::string_view name = cursor.text(local.nameSize);
        const ZipExtras extras = readExtras(cursor.text(local.extraSize));
        const Record& central = _records[index];
        const bool ours = index >= _foreignEntries;
        if (ours) {
            resolveZip64(extras, {&local.size, &local.compressedSize}, ours);
            local.extraSize = central.extraSize; // may differ
            if (!extras.contains(zip64Extra)) // only the place is too large for the old field
                local.versionNeeded = central.versionNeeded;
            require(local == central && name == _report.entries[index].name,
                "has a local record that differs");
            require(!extras.contains(unicodeNameExtra), "has a second name");
        }
        const bool hasDescriptor = !ours && (local.flags & 0x8u) != 0;
        return cursor.position() + central.compressedSize + (hasDescriptor ? 16 : 0);
    }

    std::string_view _bytes;
    std::size_t _foreignEntries;
    std::uint64_t _count = 0;
    std::uint64_t _centralOffset = 0;
    std::uint64_t _centralEnd = 0;
    std::string _current; // whose records are being read
    std::vector<Record> _records;
    ZipReport _report;
};

} // namespace

std::vector<std::string> ZipReport::names() const
{
    std::vector<std::string> names;
    std::transform(entries.begin(), entries.end(), std::back_inserter(names),
        [](const ZipEntry& entry) { return entry.name; });
    return names;
}

ZipReport inspectZip(const std::filesystem::path& archive, std::size_t foreignEntries)
{
    const Descriptor file(open(archive.c_str(), O_RDONLY | O_CLOEXEC));
    const std::size_t size = std::filesystem::file_size(archive);
    if (size == 0)
        return {.complaints = {"is empty"}};
    void* const bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    if (bytes == MAP_FAILED)
        return {.complaints = {"cannot be mapped"}};
    ZipReport report = Inspector({static_cast<const char*>(bytes), size}, foreignEntries).report();
    munmap(bytes, size);
    return report;
}

} // namespace support
