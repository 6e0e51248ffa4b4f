#pragma once

#include "tools/common/Pipeline.h"
#include "tools/common/ToolMain.h"
#include "tools/common/TreeWalk.h"
#include "tools/zip/BlockReader.h"
#include "tools/zip/ZipWriter.h"

#include <functional>
#include <memory>
#include <string>

struct TreeToStore {
    std::string item; // one name in the current folder
    std::string storedName; // its name in the archive
    TreeWalkOptions walk = {};
    int level = 6;
};

using MakeBlockReader = std::function<std::unique_ptr<BlockReader>(Pipeline<Block>::Feed& feed)>;

// Takes the item through reader, compressors and writer, and completes the archive. Throws Failure
// when that is not made.
ToolResult storeTree(ZipWriter& writer, const TreeToStore& tree, const MakeBlockReader& makeReader);
