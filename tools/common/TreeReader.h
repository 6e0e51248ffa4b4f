// What those who read a tree into an archive or a copy do alike: files are opened and looked at
// again, links are read, the run's own files left out. Everything that is not stored as it is gets
// a warning; both are counted.
#pragma once

#include "tools/common/OwnFiles.h"
#include "tools/common/SourceFile.h"
#include "tools/common/TreeWalk.h"

#include <cstdint>
#include <string>

class TreeReader : public TreeVisitor
{
public:
    explicit TreeReader(const OwnFiles& ownFiles)
        : _ownFiles(ownFiles)
    {
    }

    void visitFile(const TreeItem& item) final;
    void visitLink(const TreeItem& item, const FileStatus& status) final;
    bool visitFolder(const TreeItem& item, const FileStatus& status) final;
    void warn(std::string_view path, const std::string& reason) final;

    [[nodiscard]] std::uint64_t entryCount() const { return _entryCount; }
    [[nodiscard]] std::uint64_t warningCount() const { return _warningCount; }

protected:
    // Of what `file` tells in the end is warned here.
    virtual void addFile(const TreeItem& item, SourceFile& file) = 0;
    virtual void addLink(const TreeItem& item, const FileStatus& status, const std::string& target)
        = 0;
    // False leaves the folder and all in it out.
    virtual bool addFolder(const TreeItem& item, const FileStatus& status) = 0;

    void countEntry() { ++_entryCount; }

private:
    const OwnFiles _ownFiles;
    std::uint64_t _entryCount = 0;
    std::uint64_t _warningCount = 0;
};
