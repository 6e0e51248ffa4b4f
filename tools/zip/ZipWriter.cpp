#include "tools/zip/ZipWriter.h"

#include "system/PathString.h"
#include "tools/common/Compressor.h"
#include "tools/common/Crc32.h"
#include "tools/common/Failure.h"
#include "tools/common/Interrupt.h"
#include "tools/common/Messages.h"

#include <algorithm>

namespace
{

OutputFile openArchive(const std::string& path, ZipWriter::Existing existing)
{
    if (existing == ZipWriter::Existing::addTo)
        if (std::optional<OutputFile> file = OutputFile::openExisting(path))
            return std::move(*file);
    return OutputFile::createBeside(path);
}

ExistingArchive readArchive(const OutputFile& file, std::string_view item)
{
    const auto size = static_cast<std::uint64_t>(file.status().st_size);
    return file.isInPlace() && size > 0 ? ExistingArchive::read(file.descriptor(), size, item)
                                        : ExistingArchive();
}

} // namespace

ZipWriter::ZipWriter(
    const std::string& path, Existing existing, ProgressLine progressLine, std::string_view item)
    : _existingMode(existing)
    , _progressLine(std::move(progressLine))
    , _file(openArchive(path, existing))
    , _isInPlace(_file.isInPlace())
    , _existing(readArchive(_file, item))
    , _oldDirectory(_file, _existing.directory, PathString::folderOf(path))
    , _records(PathString::folderOf(path))
    , _usesZip64(_existing.directory.usesZip64)
{
    _file.setPosition(_existing.directory.offset);
}

ZipWriter::~ZipWriter()
{
    if (!_isInPlace || _isFinished || _entryCount == 0)
        return;
    try {
        _restore();
    } catch (const std::exception& error) {
        Messages::tell("the archive could not be put back as it was", error.what());
    }
}

void ZipWriter::add(const Block& block)
{
    _progress.clear();
    if (!block.members.front().isWhole()) {
        _addPiece(block, block.members.front());
    } else {
        const std::uint64_t begin = _file.position();
        _entryCount += block.members.size();
        _append(block.output);
        for (const Member& member : block.members) {
            ZipFormat::Entry entry = member.entry;
            entry.offset = begin + member.outputBegin;
            _addRecord(entry);
        }
    }
    Messages::progress(_progress);
}

void ZipWriter::_append(std::span<const std::byte> bytes)
{
    _oldDirectory.holdUpTo(_file.position() + bytes.size());
    _file.append(bytes);
}

void ZipWriter::_addPiece(const Block& block, const Member& piece)
{
    if (piece.isFirst) {
        ++_entryCount;
        _open = piece.entry;
        _pieces.clear();
        _open.offset = _file.position();
        ByteBuffer header;
        ZipFormat::appendLocalHeader(header, _open);
        _append(header);
    }
    const std::span<const std::byte> input = block.dataOf(piece);
    const std::span<const std::byte> data = piece.isStored ? input : std::span(block.output);
    _append(data);
    _open.crc = Crc32::combine(_open.crc, piece.crc, input.size());
    _open.size += input.size();
    _open.compressedSize += data.size();
    _pieces.push_back({input.size(), data.size()});
    if (piece.isAbandoned)
        _file.setPosition(_open.offset);
    else if (piece.isLast)
        _finishOpen();
}

void ZipWriter::_finishOpen()
{
    if (_open.method == ZipFormat::Method::deflated && _open.compressedSize >= _open.size)
        _storeOpen();
    ByteBuffer header;
    ZipFormat::appendLocalHeader(header, _open);
    _file.writeAt(_open.offset, header);
    _addRecord(_open);
}

// What did not get smaller is stored after all. Its pieces are read back from the archive, because
// the file may be another by now. As far as they were smaller at first, what has to be written
// would overwrite pieces still to be read: that much, and no more than the others grew, is held
// back.
void ZipWriter::_storeOpen()
{
    std::uint64_t readAt = _file.position() - _open.compressedSize;
    std::uint64_t writeAt = readAt;
    ByteBuffer& data = _restored;
    data.clear();
    for (const Piece& piece : _pieces) {
        Interrupt::check();
        _readBack.clear();
        const std::span<std::byte> compressed = _readBack.room(piece.compressedSize);
        _file.readAt(readAt, compressed);
        _readBack.keep(compressed.size());
        readAt += compressed.size();
        Compressor::restorePiece(_readBack, data.room(piece.size));
        data.keep(piece.size);
        const std::size_t ready = std::min<std::uint64_t>(data.size(), readAt - writeAt);
        _file.writeAt(writeAt, {data.begin(), ready});
        writeAt += ready;
        std::copy(data.begin() + ready, data.end(), data.begin());
        data.shrinkTo(data.size() - ready);
    }
    _file.setPosition(writeAt);
    _open.method = ZipFormat::Method::stored;
    _open.compressedSize = _open.size;
}

void ZipWriter::_addRecord(const ZipFormat::Entry& entry)
{
    ByteBuffer record;
    ZipFormat::appendCentralRecord(record, entry);
    _records.append(record);
    _usesZip64 = _usesZip64 || entry.needsZip64();
    ++_newRecords;
    _progress += _progressLine(entry);
}

bool ZipWriter::finish()
{
    if (_newRecords == 0)
        throw Failure(FailureKind::nothingToDo, "nothing to do: no input is left to be stored");
    const ZipFormat::Directory directory{_existing.directory.entryCount + _newRecords,
        _existing.directory.size + _records.size(), _file.position(), _usesZip64};
    ByteBuffer end;
    ZipFormat::appendEnd(end, directory, _existing.comment);
    _records.append(end);
    _oldDirectory.moveToPosition();
    _records.read(_records.size(), [&](std::span<const std::byte> part) { _file.append(part); });
    _file.truncateHere();
    bool isSecured = true;
    if (_isInPlace)
        _file.flush();
    else if (_existingMode == Existing::replace)
        isSecured = _file.commitDurably(OutputFile::Existing::replace);
    else
        _file.commit(OutputFile::Existing::keep);
    _isFinished = true;
    return isSecured;
}

void ZipWriter::_restore()
{
    _oldDirectory.putBack();
    _file.append(_existing.tail);
    _file.truncateHere();
}
