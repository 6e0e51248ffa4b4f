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

// Nothing when the archive is refused. Any other exception ends the program.
std::optional<ExistingArchive> read(std::span<const std::byte> bytes)
{
    const FileDescriptor file(::memfd_create("archive", MFD_CLOEXEC));
    const auto written = ::pwrite(file.number(), bytes.data(), bytes.size(), 0);
    require(static_cast<std::size_t>(written) == bytes.size(), "memory holds the input");
    try {
        const auto archive = ExistingArchive::read(file.number(), bytes.size(), "added");
        require(archive.holdsItem == archive.topNames(file.number()).contains("added"),
            "both tell the same of a name");
        return archive;
    } catch (const Failure& failure) {
        require(failure.kind() == FailureKind::badArchive, "it is the archive that is wrong");
        return std::nullopt;
    }
}

// The archive with an empty file behind its members, as adding in place makes it.
ByteBuffer withOneMore(std::span<const std::byte> bytes, const ExistingArchive& archive)
{
    ZipFormat::Directory directory = archive.directory;
    const ZipFormat::Entry entry{.name = "added/file", .offset = directory.offset, .mode = S_IFREG};
    ByteBuffer result;
    result.append(bytes.first(directory.offset));
    ZipFormat::appendLocalHeader(result, entry);
    directory.offset = result.size();
    result.append(bytes.subspan(archive.directory.offset, archive.directory.size));
    ZipFormat::appendCentralRecord(result, entry);
    directory.size = result.size() - directory.offset;
    ++directory.entryCount;
    ZipFormat::appendEnd(result, directory, archive.comment);
    return result;
}

} // namespace

void Fuzzing::test(std::string_view input)
{
    const auto bytes = std::as_bytes(std::span(input));
    const auto archive = read(bytes);
    if (!archive)
        return;
    const ZipFormat::Directory& directory = archive->directory;
    require(directory.offset + directory.size + archive->tail.size() == input.size(),
        "members, directory and tail are all there is");

    const auto added = read(withOneMore(bytes, *archive));
    require(added.has_value(), "what was added to can be added to");
    require(added->directory.entryCount == archive->directory.entryCount + 1
            && added->comment == archive->comment,
        "nothing is lost");
    require(added->holdsItem, "the name is there");
}
