#include "tools/tar/LinkedFiles.h"

#include <algorithm>

class LinkedFiles::Collector : public TreeVisitor
{
public:
    explicit Collector(const OwnFiles& ownFiles)
        : _ownFiles(ownFiles)
    {
    }

    void visitFile(const TreeItem& item) override
    {
        FileStatus status{};
        if (item.isFollowed && ::fstatat(item.folder, item.name, &status, 0) == 0)
            linked.emplace_back(status.st_dev, status.st_ino);
    }
    void visitLink(const TreeItem& /*item*/, const FileStatus& /*status*/) override { }
    bool visitFolder(const TreeItem& item, const FileStatus& status) override
    {
        if (_ownFiles.isScratchFolder(item, status))
            return false;
        folders.emplace_back(status.st_dev, status.st_ino);
        return true;
    }
    // The walk that makes the archive will find it, too.
    void warn(std::string_view /*path*/, const std::string& /*reason*/) override { }

    std::vector<Identity> linked; // files
    std::vector<Identity> folders;

private:
    const OwnFiles& _ownFiles;
};

LinkedFiles::LinkedFiles(
    const std::string& folder, const TreeWalkOptions& options, const OwnFiles& ownFiles)
{
    Collector found(ownFiles);
    walkTree(folder, folder, options, found);
    _identities = std::move(found.linked);
    std::ranges::sort(found.folders);
    for (auto again = found.folders.begin();
         (again = std::adjacent_find(again, found.folders.end())) != found.folders.end(); ++again)
        _identities.push_back(*again);
    std::ranges::sort(_identities);
    _identities.erase(std::unique(_identities.begin(), _identities.end()), _identities.end());
    _identities.shrink_to_fit();
}

bool LinkedFiles::contains(const FileStatus& status) const
{
    return std::ranges::binary_search(_identities, Identity(status.st_dev, status.st_ino));
}
