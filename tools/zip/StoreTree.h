#pragma once

#include "tools/common/Pipeline.h"
#include "tools/common/TreeWalk.h"
#include "tools/zip/BlockReader.h"
#include "tools/zip/ZipWriter.h"

#include <functional>
#include <memory>
#include <string>

enum class ZipResult {
    Complete,
    WithWarnings, // the archive is made, but something was left out or has changed while it was
                  // read
};

struct TreeToStore {
    std::string item; // one name in the current folder
    std::string storedName; // its name in the archive
    TreeWalkOptions walk = {};
    int level = 6;
    unsigned threadCount = 1;
};

using MakeBlockReader = std::function<std::unique_ptr<BlockReader>(Pipeline<Block>::Feed& feed)>;

// Takes the item through reader, compressors and writer, and completes the archive. Throws Failure
// when that is not made.
ZipResult storeTree(ZipWriter& writer, const TreeToStore& tree, const MakeBlockReader& makeReader);
