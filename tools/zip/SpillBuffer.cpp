#include "tools/zip/SpillBuffer.h"

#include "system/FileBytes.h"
#include "tools/common/Failure.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace
{

// Room for the directory records of about 80,000 entries.
constexpr std::size_t memoryLimit = std::size_t{8} << 20;
constexpr std::size_t roomBehind = std::size_t{64} << 10;
constexpr std::size_t readSize = std::size_t{256} << 10;

Failure cannotSpill()
{
    return systemFailure(FailureKind::Write, "cannot write a temporary file");
}

FileDescriptor openNameless(const std::string& folder)
{
    FileDescriptor file(
        open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (file)
        return file;
    // File systems without O_TMPFILE (NFS, FUSE): a name that is gone at once.
    std::string path = (folder.empty() ? "./" : folder + "/") + ".parcelo-XXXXXX";
    file = FileDescriptor(mkostemp(path.data(), O_CLOEXEC));
    if (!file)
        throw cannotSpill();
    unlink(path.c_str());
    return file;
}

} // namespace

void SpillBuffer::append(std::span<const std::byte> bytes)
{
    if (_memory.size() + bytes.size() > memoryLimit)
        spill();
    // A long text is mostly followed by short ones: room for these, or the first would copy it.
    if (const std::size_t needed = _memory.size() + bytes.size(); needed > _memory.capacity())
        _memory.reserve(std::max(needed + roomBehind, 2 * _memory.capacity()));
    _memory.insert(_memory.end(), bytes.begin(), bytes.end());
}

void SpillBuffer::spill()
{
    if (!_file)
        _file = openNameless(_folder);
    std::span<const std::byte> rest(_memory);
    while (!rest.empty()) {
        const ssize_t written
            = pwrite(_file.number(), rest.data(), rest.size(), static_cast<off_t>(_spilled));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw cannotSpill();
        rest = rest.subspan(static_cast<std::size_t>(written));
        _spilled += static_cast<std::uint64_t>(written);
    }
    _memory.clear();
}

void SpillBuffer::read(
    std::uint64_t size, const std::function<void(std::span<const std::byte>)>& take) const
{
    std::vector<std::byte> buffer(std::min<std::uint64_t>(readSize, std::min(size, _spilled)));
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
