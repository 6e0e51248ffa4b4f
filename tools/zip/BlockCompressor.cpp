#include "tools/zip/BlockCompressor.h"

#include "tools/common/Crc32.h"

#include <algorithm>

BlockCompressor::BlockCompressor(int level)
{
    if (level > 0)
        _compressor.emplace(level);
}

void BlockCompressor::operator()(Block& block)
{
    for (Member& member : block.members) {
        const std::span<const std::byte> data = block.dataOf(member);
        member.crc = Crc32::of(data);
        if (member.isWhole())
            _finishWhole(block, member);
        else if (!member.isStored && !member.isAbandoned)
            _compressor->compressPiece(data, member.isLast, block.output);
    }
}

// The header comes before the data, but tells how the data turned out, so it is written twice: its
// size does not depend on that.
void BlockCompressor::_finishWhole(Block& block, Member& member)
{
    using ZipFormat::Method;
    const std::span<const std::byte> data = block.dataOf(member);
    ByteBuffer& output = block.output;
    member.outputBegin = output.size();
    ZipFormat::appendLocalHeader(output, member.entry);
    const bool isWorthTrying = !member.isStored && !looksIncompressible(data);
    const std::size_t compressed = isWorthTrying ? _compressor->compressSmaller(data, output) : 0;
    if (compressed == 0)
        output.append(data);
    member.entry.method = compressed == 0 ? Method::stored : Method::deflated;
    member.entry.crc = member.crc;
    member.entry.size = data.size();
    member.entry.compressedSize = compressed == 0 ? data.size() : compressed;
    ByteBuffer header;
    ZipFormat::appendLocalHeader(header, member.entry);
    std::ranges::copy(header, output.begin() + member.outputBegin);
}
