// Class-level helpers; there are no instances.
#pragma once

#include "platform/base/bundle/PropertyList.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QKUtility
{
public:
    QKUtility() = delete;

    // Runs the block once on the main thread, no sooner than the delay (in seconds; zero or less:
    // the next turn of the main queue). Any thread; returns at once.
    static void afterDelay(double seconds, std::function<void()> runBlock);

    // The operating system's version in the packed form 0xMMmb (0x1068 for 10.6.8), asked for until
    // it is known and then kept; 0 when unknown. Linux has no such version.
    static std::int32_t systemVersion();
    static bool isJaguar(); // 0x1020 to 0x102F
    static bool isPanther(); // 0x1030 to 0x103F

    // Runs a tool in our environment, in the given folder or else in ours, until the end of its
    // standard output, which is the result. It reads nothing, from a pipe at its end; its standard
    // error goes where ours does. The exit status, or 128 + the number of the signal that killed
    // the tool, is stored where a place is given. Throws LaunchFailure.
    static std::string runCommand(const std::filesystem::path& command,
        const std::vector<std::string>& withArguments,
        const std::optional<std::filesystem::path>& currentDirectoryPath,
        std::int32_t* terminationStatus);
    static std::string runCommand(
        const std::filesystem::path& command, const std::vector<std::string>& withArguments);

    // Starts the program anew, without arguments, and asks this one to end. Throws LaunchFailure,
    // and then goes on. Deprecated, as the log says: a program of one instance hands over to the
    // one that is about to end.
    static void restartApplication();

    // How this program is asked to end; until it is set, its event loop is left.
    using Terminator = std::function<void()>;
    static void setTerminator(Terminator terminator);

    // In kilobytes, as ps tells it; 0 when it cannot be asked.
    [[nodiscard]] static std::int32_t residentSetSize();

    // Whether the bundle's information file says, now, that the program is an agent without an icon
    // of its own: the value of "LSUIElement" is 1, as a number, a text or a boolean. Setting it
    // writes a number and the present as the bundle's modification date; what cannot be written
    // stays as it was.
    [[nodiscard]] static bool isHeadless();
    static void setHeadless(bool headless);

    // Runs the text as a script for "System Events", on the main thread; whether that works is not
    // told.
    static void tellSystemEvents(const std::string& script);

    // Programs that start with the session. The path is put into a script as it is: one with a
    // double quote in it adds nothing. What is removed is named without its extension, which may be
    // given.
    static void addAutoLaunchPath(const std::string& path, bool hide);
    static void removeAutoLaunchAppNamed(const std::string& name);

    // As they are now: each has its file's path as "Path".
    [[nodiscard]] static std::vector<PropertyList::Dictionary> getAutoLaunchedApplications();

    // By the file name, exactly and with its extension.
    [[nodiscard]] static bool appAutoLaunches(const std::string& application);

    // What systemVersion() asks, nothing when it fails; setting it also forgets the version. For
    // tests.
    using VersionQuery = std::function<std::optional<std::int32_t>()>;
    static void setVersionQuery(VersionQuery query);
};
