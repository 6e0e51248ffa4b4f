#include "tools/zip/OldDirectory.h"

#include <algorithm>
#include <array>
#include <span>

namespace
{

// On the stack, so that there is memory for it; no larger, because fresh memory is what takes time.
using Window = std::array<std::byte, std::size_t{32} << 10>;

std::span<std::byte> firstOf(Window& window, std::uint64_t size)
{
    return std::span(window).first(std::min<std::uint64_t>(window.size(), size));
}

} // namespace

OldDirectory::OldDirectory(
    OutputFile& file, const ZipFormat::Directory& directory, const std::string& spillFolder)
    : _file(file)
    , _begin(directory.offset)
    , _end(directory.offset + directory.size)
    , _held(spillFolder)
    , _movedBegin(_end)
{
}

void OldDirectory::holdUpTo(std::uint64_t end)
{
    const std::uint64_t wanted = std::min(end, _end);
    if (_heldEnd() >= wanted)
        return;
    Window window{};
    while (_heldEnd() < wanted) {
        const std::span<std::byte> part = firstOf(window, wanted - _heldEnd());
        _file.readAt(_heldEnd(), part);
        _held.append(part);
    }
}

void OldDirectory::moveToPosition()
{
    const std::uint64_t offset = _file.position();
    if (_begin == _end)
        return;
    _moveRest(offset - _begin);
    _writeHeld(offset);
    _file.setPosition(offset + _end - _begin);
}

// From its end down, so that nothing is overwritten before it has been moved.
void OldDirectory::_moveRest(std::uint64_t distance)
{
    Window window{};
    _distance = distance;
    while (_movedBegin > _heldEnd()) {
        const std::span<std::byte> part = firstOf(window, _movedBegin - _heldEnd());
        const std::uint64_t from = _movedBegin - part.size();
        _file.readAt(from, part);
        try {
            _file.writeAt(from + distance, part);
        } catch (...) {
            _file.writeAt(from, part); // which the part itself may have been written over
            throw;
        }
        _movedBegin = from;
    }
}

void OldDirectory::putBack()
{
    Window window{};
    while (_movedBegin < _end) {
        const std::span<std::byte> part = firstOf(window, _end - _movedBegin);
        _file.readAt(_movedBegin + _distance, part);
        _file.writeAt(_movedBegin, part);
        _movedBegin += part.size();
    }
    _writeHeld(_begin);
    _file.setPosition(_end);
}

void OldDirectory::_writeHeld(std::uint64_t offset)
{
    _file.setPosition(offset);
    _held.read(_held.size(), [&](std::span<const std::byte> part) { _file.append(part); });
}
