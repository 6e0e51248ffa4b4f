// The producer of disk images: an image that can grow is made and mounted, the items are copied on
// it, and it is converted to one that is compressed and, with a password, encrypted. Only the
// system's own disk-image tool can do that; where there is none, nothing is begun.
//
// What the tools report changes nothing in the course, and what they print is known only without a
// delegate: with one, every image has the smallest size, and is unmounted by its path. Both are
// intended.

#include "platform/base/bundle/PropertyList.h"
#include "shared/Library/Archiver/Archiver.h"
#include "shared/Library/Archiver/FileManagerArchiverConvenience.h"
#include "system/FileBytes.h"
#include "system/PartFile.h"
#include "system/PathString.h"
#include "system/TextNumber.h"
#include "system/Utf8.h"

#include <algorithm>
#include <cstdint>

#include <sys/stat.h>

namespace convenience = FileManagerArchiverConvenience;
namespace fs = std::filesystem;
using PathString::lastPathComponent;
using PathString::stringByDeletingPathExtension;

namespace
{

constexpr const char* hdiutil = "/usr/bin/hdiutil";
constexpr const char* ditto = "/usr/bin/ditto";
constexpr const char* du = "/usr/bin/du";

constexpr std::int64_t fewestSectors = 10240; // of 512 bytes

// How long an unmounting may take that nobody waits for any more: it writes what the volume holds.
constexpr std::chrono::seconds unmountTime{20};

// In 32 bits, as the tool counts them: a size beyond a third of that wraps around.
std::int32_t sectorsFor(std::int32_t size)
{
    const auto wrapped = static_cast<std::int32_t>(3U * static_cast<std::uint32_t>(size));
    return static_cast<std::int32_t>(std::max<std::int64_t>(wrapped, fewestSectors));
}

// The file is there whole or not at all. That it may not be written is found when it is read.
void writeAtomically(const fs::path& path, const std::string& bytes)
{
    PartFile file(path.native(), S_IRUSR | S_IWUSR);
    if (file && FileBytes::writeAll(file.descriptor(), bytes))
        (void)file.commit(PartFile::Existing::replace);
}

template <typename Type>
const Type* valueIn(const PropertyList::Dictionary& dictionary, const char* key)
{
    const auto found = dictionary.find(key);
    return found == dictionary.end() ? nullptr : std::get_if<Type>(&found->second);
}

// The device of the first entry that is a whole disk; its partitions have entries of their own.
std::optional<std::string> wholeDiskIn(const PropertyList::Dictionary& listing)
{
    const auto* entries = valueIn<PropertyList::Array>(listing, "system-entities");
    if (entries == nullptr)
        return std::nullopt;
    for (const PropertyList::Value& value : *entries) {
        const auto* entry = std::get_if<PropertyList::Dictionary>(&value);
        const auto* hint = entry ? valueIn<std::string>(*entry, "content-hint") : nullptr;
        if (!hint || (*hint != "Apple_partition_scheme" && *hint != "GUID_partition_scheme"))
            continue;
        const auto* device = valueIn<std::string>(*entry, "dev-entry");
        return device ? std::optional(*device) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace

std::optional<Archiver::Path> Archiver::createDMG(
    const Path& staged, const std::optional<std::string>& withPassword, const Path& toFolder)
{
    if (missingTool(ArchiveTypeDiskImage))
        return std::nullopt;
    const std::string name = stringByDeletingPathExtension(lastPathComponent(staged.native()));
    const Path image = toFolder.native() + "/" + name + ".dmg";
    const Path growing = toFolder.native() + "/" + name + ".sparseimage";
    const std::string volume = "/Volumes/" + name; // a volume of that name may be another one
    const auto runHdiutil = [&](const std::vector<std::string>& arguments) {
        runCommand(pathForTool(hdiutil), arguments, toFolder, nullptr);
    };

    convenience::removeItemAtPath(image);
    // The name of the volume, then that of the image, which the tool completes.
    runHdiutil({"create", "-sectors", std::to_string(sectorsFor(duSizeForPath(staged))), "-fs",
        "HFS+", "-type", "SPARSE", "-volname", name, name});
    // What was mounted is unmounted, also when it is abandoned.
    if (!_abandoning.stop_requested()) {
        const std::optional<std::string> device = mountSparseImage(name, toFolder);
        dittoContentsAtPath(staged, volume);
        _setSparedFor(unmountTime);
        if (device)
            runHdiutil({"detach", *device});
        else
            runHdiutil({"unmount", volume});
        _setSparedFor({});
    }

    if (!_abandoning.stop_requested()) {
        std::vector<std::string> convert{"convert", name + ".sparseimage", "-format", "UDZO"};
        if (withPassword) // also an empty one
            convert.insert(convert.end(), {"-encryption", "-passphrase", *withPassword});
        convert.insert(convert.end(), {"-o", name});
        runHdiutil(convert);
    }
    if (_abandoning.stop_requested())
        convenience::removeItemAtPath(image);
    convenience::removeItemAtPath(growing);
    convenience::removeItemAtPath(toFolder.native() + "/mount.plist");
    return image;
}

void Archiver::_setSparedFor(std::chrono::seconds time)
{
    const std::lock_guard lock(_taskMutex);
    _sparedUntil = std::chrono::steady_clock::now() + time;
}

int Archiver::duSizeForPath(const Path& path)
{
    const std::string output
        = runCommand(pathForTool(du), {"-Ls", path.native()}, std::nullopt, nullptr).value_or("");
    if (!Utf8::isAscii(output))
        return 0;
    return TextNumber::intValue(output.substr(0, output.find(' ')));
}

std::optional<std::string> Archiver::mountSparseImage(
    const std::string& name, const Path& folderPath)
{
    const Path listing = folderPath.native() + "/mount.plist";
    const auto output = runCommand(
        pathForTool(hdiutil), {"mount", name + ".sparseimage", "-plist"}, folderPath, nullptr);
    if (output)
        writeAtomically(listing, *output);
    const auto dictionary = PropertyList::dictionaryWithContentsOfFile(listing);
    return dictionary ? wholeDiskIn(*dictionary) : std::nullopt;
}

void Archiver::dittoContentsAtPath(const Path& staged, const Path& to)
{
    std::error_code unreadable;
    fs::recursive_directory_iterator entry(
        staged, fs::directory_options::skip_permission_denied, unreadable);
    for (; !unreadable && !_abandoning.stop_requested()
         && entry != fs::recursive_directory_iterator();
         entry.increment(unreadable)) {
        std::error_code missing;
        Path source = entry->path();
        if (entry->is_symlink(missing))
            source = fs::read_symlink(source, missing); // as it stands, also when it is relative
        const Path target = to.native() + "/" + entry->path().lexically_relative(staged).native();
        runCommand(pathForTool(ditto), {"-rsrcFork", source, target}, std::nullopt, nullptr);
    }
}
