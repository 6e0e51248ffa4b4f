// Walks a tree below one item in the order in which archives want it: a folder, then the files and
// links in it, then its sub-folders one after the other, each sorted by the bytes of the names. So
// a folder's content follows it directly, and no link is extracted through another. Of a folder
// with hundreds of thousands of files only as many are sorted at once as memory shall hold; the
// names of sub-folders are all held.
//
// Only a few folders are open at a time, whatever the depth, and every step goes by a descriptor
// and one name: paths may be longer than PATH_MAX, and nothing is followed that has not been looked
// at. A folder far above the one that is read is opened again, from the top, when more of it is to
// be done, and must be the same one then.
//
// With links followed, a link that leads to a folder it lies in would never end; such a link, one
// that leads nowhere and one to a device are handed over as the links they are, with a warning.
#pragma once

#include "system/FileStatus.h"

#include <cstdint>
#include <string>
#include <string_view>

struct TreeItem {
    std::string_view path; // from the item on, without a slash at the end
    int folder; // descriptor of the folder it is in; valid during the call
    const char* name; // its name there
    bool isFollowed; // it is the target of the link of this name
};

class TreeVisitor
{
public:
    virtual ~TreeVisitor() = default;

    // A regular file, by what its folder says: to be opened, and looked at again, by the visitor.
    virtual void visitFile(const TreeItem& item) = 0;
    virtual void visitLink(const TreeItem& item, const FileStatus& status) = 0;
    // False leaves the folder and all in it out.
    virtual bool visitFolder(const TreeItem& item, const FileStatus& status) = 0;
    // Something is missing from the walk, or not what one would expect.
    virtual void warn(std::string_view path, const std::string& reason) = 0;
};

struct TreeWalkOptions {
    bool followsLinks = false;
    bool excludesDSStore = false; // regular files called .DS_Store, but not the item itself
};

// Walks the item called `name` in the current folder; its paths begin with `storedName`. Returns
// how many files were excluded. Throws only what the visitor throws.
std::uint64_t walkTree(const std::string& name, const std::string& storedName,
    const TreeWalkOptions& options, TreeVisitor& visitor);
