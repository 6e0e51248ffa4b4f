#include "tools/ditto/ForkZip.h"

#include "tools/common/Failure.h"
#include "tools/common/Messages.h"
#include "tools/ditto/AppleDouble.h"
#include "tools/ditto/ExtendedAttributes.h"
#include "tools/ditto/ServerForks.h"
#include "tools/zip/StoreTree.h"

#include <cerrno>

#include <fcntl.h>

namespace
{

constexpr int level = 6;
constexpr std::string_view sideFolder = "__MACOSX"; // of the entries that hold attributes

bool isOf(std::string_view item, std::string_view path)
{
    return path.starts_with(item) && (path.size() == item.size() || path[item.size()] == '/');
}

// For what was dropped, not for what comes with it: the program counts the former.
std::string progressLine(const std::string& item, const ZipFormat::Entry& entry)
{
    if (!isOf(item, entry.name))
        return "";
    const std::string kind = S_ISLNK(entry.mode) ? "symlink" : "file";
    return "copying " + kind + " ./" + Messages::progressName(entry.name) + " ... \n";
}

// __MACOSX/a/._b for a/b.
std::string sideName(std::string_view path)
{
    const std::size_t name = path.rfind('/') + 1; // 0 without a slash
    std::string result(sideFolder);
    result.append("/").append(path.substr(0, name)).append("._").append(path.substr(name));
    return result;
}

// Also reads the attributes of files and folders. Links cannot have any of a user's.
class ForkReader : public BlockReader
{
public:
    using BlockReader::BlockReader;

protected:
    void storedFile(const TreeItem& item, const SourceFile& file) override
    {
        _addAttributes(item, file.status(), file.descriptor());
    }

    void storedFolder(const TreeItem& item, const FileStatus& status) override
    {
        const FileDescriptor folder(
            ::openat(item.folder, item.name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (folder) // else the walk warns, too
            _addAttributes(item, status, folder.number());
    }

private:
    void _addAttributes(const TreeItem& item, const FileStatus& status, int descriptor)
    {
        AppleDouble side;
        ServerForks::Attributes forks;
        ExtendedAttributes::forEach(descriptor, [&](const auto& name, auto value, int error) {
            const bool isUsers = name.starts_with(ExtendedAttributes::userPrefix);
            if (error != 0 && (isUsers || name.empty()))
                warn(item.path, "extended attribute " + name + ": " + errorText(error));
            else if (isUsers)
                _addAttribute(
                    side, forks, item, name.substr(ExtendedAttributes::userPrefix.size()), value);
        });
        ServerForks::translate(forks);
        for (const auto& [name, value] : forks)
            _addTo(side, item, name, value);
        if (!side.isEmpty())
            _addSide(item, status, side);
    }

    // Those of the forks are gathered: which of them counts is told by all of them.
    void _addAttribute(AppleDouble& side, ServerForks::Attributes& forks, const TreeItem& item,
        const std::string& name, std::span<const std::byte> value)
    {
        if (name == AppleDouble::finderInformationName && value.size() != AppleDouble::finderSize)
            warn(item.path, _named(name) + " is no Finder information, not 32 bytes; not stored");
        else if (ServerForks::concern(name))
            forks.try_emplace(name, value.begin(), value.end());
        else
            _addTo(side, item, name, value);
    }

    void _addTo(AppleDouble& side, const TreeItem& item, const std::string& name,
        std::span<const std::byte> value)
    {
        if (!side.add(name, value))
            warn(item.path, _named(name) + " is too long to be stored");
    }

    static std::string _named(const std::string& name)
    {
        return "extended attribute " + std::string(ExtendedAttributes::userPrefix) + name;
    }

    void _addSide(const TreeItem& item, const FileStatus& status, const AppleDouble& side)
    {
        ZipFormat::Entry entry = ZipFormat::makeEntry(sideName(item.path), status);
        entry.mode = S_IFREG | (status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO) & ~0111U);
        if (entry.name.size() > ZipFormat::longestName)
            warn(item.path, "its extended attributes have too long a name to be stored");
        else if (isOf(sideFolder, item.path)) // two entries of one name could come of it
            warn(item.path, "its extended attributes are not stored in a folder of that name");
        else
            addContent(std::move(entry), side.bytes());
    }
};

} // namespace

ToolResult makeForkZip(const DittoOptions& options)
{
    ZipWriter writer(options.target, ZipWriter::Existing::replace,
        [&](const ZipFormat::Entry& entry) { return progressLine(options.source, entry); });
    const OwnFiles ownFiles(writer.file(), ".");
    const TreeToStore tree{.item = options.source, .storedName = options.source, .level = level};
    return storeTree(writer, tree, [&](Pipeline<Block>::Feed& feed) {
        return std::make_unique<ForkReader>(feed, ownFiles, true);
    });
}
