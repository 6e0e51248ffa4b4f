#include "tools/zip/SpillBuffer.h"

#include "system/FileBytes.h"
#include "system/PathString.h"
#include "tools/common/Failure.h"

#include <algorithm>
#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace
{

// Room for the directory records of about 80,000 entries.
constexpr std::size_t memoryLimit = std::size_t{8} << 20;
// So much that it can lie on the stack: an archive has to be put back without memory, too.
constexpr std::size_t readSize = std::size_t{16} << 10;

Failure cannotSpill()
{
    return systemFailure(FailureKind::write, "cannot write a temporary file");
}

FileDescriptor openNameless(const std::string& folder)
{
    FileDescriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file)
        return file;
    // File systems without O_TMPFILE (NFS, FUSE): a name that is gone at once.
    std::string path = PathString::stringByAppendingPathComponent(folder, ".parcelo-XXXXXX");
    file = FileDescriptor(::mkostemp(path.data(), O_CLOEXEC));
    if (!file)
        throw cannotSpill();
    ::unlink(path.c_str());
    return file;
}

} // namespace

void SpillBuffer::append(std::span<const std::byte> bytes)
{
    if (_memory.size() + bytes.size() > memoryLimit)
        _spill();
    _memory.append(bytes);
}

void SpillBuffer::_spill()
{
    if (!_file)
        _file = openNameless(_folder);
    if (!FileBytes::writeAllAt(_file.number(), _spilled, _memory))
        throw cannotSpill();
    _spilled += _memory.size();
    _memory.clear();
}

void SpillBuffer::read(
    std::uint64_t size, const std::function<void(std::span<const std::byte>)>& take) const
{
    std::array<std::byte, readSize> buffer{};
    std::uint64_t done = 0;
    while (done < std::min(size, _spilled)) {
        const auto count = std::min<std::uint64_t>(buffer.size(), std::min(size, _spilled) - done);
        const std::span<std::byte> part = std::span(buffer).first(count);
        if (FileBytes::readFullyAt(_file.number(), done, part)
            != static_cast<std::ptrdiff_t>(count))
            throw cannotSpill();
        take(part);
        done += count;
    }
    if (size > done)
        take(std::span(_memory).first(size - done));
}
