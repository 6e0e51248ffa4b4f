#include "platform/desktop/services/LoginItems.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/services/DesktopEntry.h"
#include "system/FileBytes.h"
#include "system/PartFile.h"
#include "system/PathString.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>

#include <unistd.h>

namespace fs = std::filesystem;

namespace
{

constexpr std::string_view extension = ".desktop";
constexpr const char* hideKey = "X-Parcelo-Hide"; // for us alone: see Record::hide
constexpr std::size_t largestEntryInBytes = 1 << 20; // real ones have some kilobytes

struct Item {
    std::string fileName;
    DesktopEntry entry;
    fs::path program; // empty when Exec cannot be read
    bool isPlain; // the program is all of the command: of a shell with its script, say, it is not
    bool isSystems; // there is a file of the system's
};

// The parts of a variable with paths between colons. Relative ones do not count in XDG variables.
std::vector<fs::path> foldersIn(const char* variable, const std::string& fallback)
{
    const char* set = std::getenv(variable);
    std::string rest = (set != nullptr && *set != '\0' ? set : fallback) + ":";
    std::vector<fs::path> folders;
    for (std::size_t end = 0; (end = rest.find(':')) != std::string::npos; rest.erase(0, end + 1))
        if (rest.front() == '/')
            folders.emplace_back(rest.substr(0, end));
    return folders;
}

// Empty when there is no home folder either.
fs::path userFolder()
{
    const char* set = std::getenv("XDG_CONFIG_HOME");
    const fs::path folder(set != nullptr && *set == '/'
            ? set
            : PathString::stringByExpandingTildeInPath("~/.config"));
    return folder.is_absolute() ? folder / "autostart" : fs::path();
}

bool writeEntry(const std::string& fileName, const DesktopEntry& entry)
{
    const fs::path folder = userFolder();
    std::error_code failure;
    if (folder.empty())
        return false;
    if (fs::create_directories(folder, failure))
        fs::permissions(folder, fs::perms::owner_all, failure); // as the base directories are made
    const auto write = [&](const fs::path& path) {
        PartFile file(path, 0644);
        return file && FileBytes::writeAll(file.descriptor(), entry.text())
            && !file.commitDurably(PartFile::Existing::replace);
    };
    // A link stays one, unless what it leads to is not ours to change.
    const fs::path target = fs::canonical(folder / fileName, failure);
    const bool leadsToFile = !failure && fs::is_regular_file(target, failure);
    return (leadsToFile && write(target)) || write(folder / fileName);
}

bool isProgram(const fs::path& path)
{
    std::error_code unreadable;
    return ::access(path.c_str(), X_OK) == 0 && fs::is_regular_file(path, unreadable);
}

// The program's path, looked up in PATH when it is a mere name; empty when it is not there.
fs::path findProgram(const std::string& program)
{
    if (program.find('/') != std::string::npos)
        return isProgram(program) ? fs::path(program) : fs::path();
    for (const fs::path& folder : foldersIn("PATH", "/bin:/usr/bin"))
        if (fs::path found = folder / program; isProgram(found))
            return found;
    return {};
}

Item itemOf(const std::string& fileName, const DesktopEntry& entry, bool isSystems)
{
    const auto arguments = DesktopEntry::execArguments(entry.value("Exec").value_or(""));
    if (!arguments || arguments->empty())
        return {fileName, entry, {}, false, isSystems};
    const fs::path found = findProgram(arguments->front());
    return {fileName, entry, found.empty() ? fs::path(arguments->front()) : found,
        arguments->size() == 1, isSystems};
}

void addItemsIn(const fs::path& folder, bool isUsers, std::map<std::string, Item>& items)
{
    std::error_code unreadable;
    for (fs::directory_iterator at(folder, unreadable); !unreadable && at != end(at);
         at.increment(unreadable)) {
        const std::string name = at->path().filename();
        if (!name.ends_with(extension) || name.front() == '.')
            continue;
        if (const auto known = items.find(name); known != items.end()) {
            known->second.isSystems = true;
            continue;
        }
        const auto content = FileBytes::readWhole(at->path(), largestEntryInBytes);
        // An unreadable file hides those of its name as any other does, but it is no item.
        const auto entry = DesktopEntry::read(content.value_or(""));
        items.emplace(name, itemOf(name, entry.value_or(DesktopEntry()), !isUsers));
    }
}

// What the folders hold, by the names of the files; the user's file stands for the system's.
std::map<std::string, Item> allItems()
{
    std::map<std::string, Item> items;
    addItemsIn(userFolder(), true, items);
    for (const fs::path& folder : foldersIn("XDG_CONFIG_DIRS", "/etc/xdg"))
        addItemsIn(folder / "autostart", false, items);
    return items;
}

bool isOn(const DesktopEntry& entry)
{
    return !entry.isTrue("Hidden") && entry.value("X-GNOME-Autostart-enabled") != "false";
}

bool isForThisDesktop(const DesktopEntry& entry)
{
    const char* current = std::getenv("XDG_CURRENT_DESKTOP");
    const std::string names = ":" + std::string(current != nullptr ? current : "") + ":";
    const auto namesOne = [&](const std::vector<std::string>& desktops) {
        return std::any_of(desktops.begin(), desktops.end(), [&](const std::string& desktop) {
            return names.find(":" + desktop + ":") != std::string::npos;
        });
    };
    return (!entry.value("OnlyShowIn") || namesOne(entry.list("OnlyShowIn")))
        && !namesOne(entry.list("NotShowIn"));
}

bool starts(const Item& item)
{
    const auto tried = item.entry.value("TryExec");
    return !item.program.empty() && isOn(item.entry) && isForThisDesktop(item.entry)
        && (!tried || !findProgram(*tried).empty());
}

bool isNamed(const Item& item, const std::string& name)
{
    return item.entry.value("Name") == name
        || item.fileName.substr(0, item.fileName.size() - extension.size()) == name
        || (item.isPlain
            && PathString::stringByDeletingPathExtension(item.program.filename().native()) == name);
}

// The entry for a program that has none yet.
DesktopEntry newEntry(const fs::path& program, const std::string& name, const std::string& icon)
{
    DesktopEntry entry;
    entry.setValue("Type", "Application");
    entry.setValue("Name", name);
    entry.setValue("Exec", DesktopEntry::execValue({program}));
    entry.setValue("TryExec", program.native());
    entry.setValue("Icon", icon);
    return entry;
}

// A free name that begins with `base`. An entry with a hidden name would not count.
std::string freeName(const std::map<std::string, Item>& items, std::string base)
{
    if (base.starts_with('.'))
        base.insert(0, 1, '_');
    std::string name = base;
    for (int number = 2; items.contains(name + std::string(extension)); ++number)
        name = base + "-" + std::to_string(number);
    return name.append(extension);
}

} // namespace

std::vector<LoginItems::Record> LoginItems::list()
{
    std::vector<Record> records;
    for (const auto& [name, item] : allItems())
        if (starts(item))
            records.push_back({item.program, item.entry.isTrue(hideKey)});
    return records;
}

bool LoginItems::add(const fs::path& path, bool hidden)
{
    const std::string name = PathString::stringByDeletingPathExtension(path.filename().native());
    if (!path.is_absolute() || !isProgram(path))
        return false;
    const auto items = allItems();
    const auto same = std::find_if(items.begin(), items.end(), [&](const auto& each) {
        return each.second.isPlain && each.second.program == path
            && isForThisDesktop(each.second.entry);
    });
    if (same != items.end()) {
        DesktopEntry entry = same->second.entry;
        entry.setBoolean("Hidden", false);
        entry.setBoolean("X-GNOME-Autostart-enabled", true);
        entry.setBoolean(hideKey, hidden);
        return writeEntry(same->first, entry);
    }
    std::error_code unreadable;
    const bool isOurs = fs::equivalent(path, "/proc/self/exe", unreadable);
    const std::string id = isOurs ? Bundle::bundleIdentifier : name;
    DesktopEntry entry = newEntry(path, isOurs ? Bundle::name : name, id);
    entry.setBoolean(hideKey, hidden);
    return writeEntry(freeName(items, id), entry);
}

bool LoginItems::remove(const std::string& name)
{
    bool isFound = false;
    bool isRemoved = true;
    for (const auto& [fileName, item] : allItems()) {
        if (!starts(item) || !isNamed(item, name))
            continue;
        isFound = true;
        if (item.isSystems) {
            DesktopEntry entry = item.entry;
            entry.setBoolean("Hidden", true);
            isRemoved = writeEntry(fileName, entry) && isRemoved;
        } else {
            isRemoved = ::unlink((userFolder() / fileName).c_str()) == 0 && isRemoved;
        }
    }
    return isFound && isRemoved;
}
