// A worker of the pipeline: checksums and compresses a block, and lays whole entries out as they
// will be written.
#pragma once

#include "tools/common/Compressor.h"
#include "tools/zip/Block.h"

#include <optional>

class BlockCompressor
{
public:
    // `level` is 0, for none, to 9.
    explicit BlockCompressor(int level);

    void operator()(Block& block);

private:
    void _finishWhole(Block& block, Member& member);

    std::optional<Compressor> _compressor;
};
