#include "system/FileDescriptor.h"
#include "tests/fuzz/Fuzzing.h"
#include "tools/common/Failure.h"
#include "tools/zip/ExistingArchive.h"

#include <optional>
#include <span>

#include <sys/mman.h>

using Fuzzing::require;

namespace
{

using Bytes = std::vector<std::byte>;

struct Read {
    ExistingArchive archive;
    Bytes records;
};

// Nothing when the archive is refused. Any other exception ends the program.
std::optional<Read> read(std::span<const std::byte> bytes)
{
    const FileDescriptor file(::memfd_create("archive", MFD_CLOEXEC));
    const auto size = static_cast<::ssize_t>(bytes.size());
    require(
        ::pwrite(file.number(), bytes.data(), bytes.size(), 0) == size, "memory holds the input");
    SpillBuffer records("/tmp"); // which an input of this size never takes
    try {
        Read result{.archive = ExistingArchive::read(file.number(), bytes.size(), records)};
        records.read(records.size(), [&](std::span<const std::byte> piece) {
            result.records.insert(result.records.end(), piece.begin(), piece.end());
        });
        return result;
    } catch (const Failure& failure) {
        require(failure.kind() == FailureKind::badArchive, "it is the archive that is wrong");
        return std::nullopt;
    }
}

// The archive with an empty file behind its members, as adding in place makes it.
Bytes withOneMore(std::span<const std::byte> bytes, const Read& former)
{
    ZipFormat::Directory directory = former.archive.directory;
    const ZipFormat::Entry entry{.name = "added/file", .offset = directory.offset, .mode = S_IFREG};
    const std::span<const std::byte> members = bytes.first(directory.offset);
    ByteBuffer result;
    result.append(members);
    ZipFormat::appendLocalHeader(result, entry);
    directory.offset = result.size();
    result.append(former.records);
    ZipFormat::appendCentralRecord(result, entry);
    directory.size = result.size() - directory.offset;
    ++directory.entryCount;
    ZipFormat::appendEnd(result, directory, former.archive.comment);
    return {result.begin(), result.end()};
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto bytes = std::as_bytes(std::span(data, size));
    const auto former = read(bytes);
    if (!former)
        return 0;
    const ExistingArchive& archive = former->archive;
    require(former->records.size() == archive.directory.size, "the records are the directory");
    require(archive.directory.offset + archive.directory.size + archive.tail.size() == size,
        "members, directory and tail are all there is");

    const auto added = read(withOneMore(bytes, *former));
    require(added.has_value(), "what was added to can be added to");
    require(added->archive.directory.entryCount == archive.directory.entryCount + 1
            && added->archive.comment == archive.comment,
        "nothing is lost");
    require(added->archive.topNames.starts_with(archive.topNames), "the names stay");
    require(added->archive.holds("added"), "and one more is there");
    return 0;
}
