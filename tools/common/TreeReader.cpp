#include "tools/common/TreeReader.h"

#include "tools/common/Failure.h"
#include "tools/common/Messages.h"

#include <cerrno>

void TreeReader::visitFile(const TreeItem& item)
{
    SourceFile file(item);
    if (!file.isUnreadable() && !_ownFiles.isOutput(file.status()))
        addFile(item, file);
    if (!file.problem().empty())
        warn(item.path, file.problem());
}

void TreeReader::visitLink(const TreeItem& item, const FileStatus& status)
{
    if (const std::optional<std::string> target = readLink(item, status))
        addLink(item, status, *target);
    else
        warn(item.path, errorText(errno));
}

bool TreeReader::visitFolder(const TreeItem& item, const FileStatus& status)
{
    return !_ownFiles.isScratchFolder(item, status) && addFolder(item, status);
}

void TreeReader::warn(std::string_view path, const std::string& reason)
{
    ++_warningCount;
    Messages::warn(path, reason);
}
