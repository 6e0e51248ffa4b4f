// A folder that holds what belongs to a program: its information in Contents/Info.plist and its
// resources in Contents/Resources. The main bundle is the running program's.
#pragma once

#include "platform/base/bundle/PropertyList.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

class Bundle
{
public:
    static constexpr const char* name = "Parcelo";
    static constexpr const char* bundleIdentifier = "org.parcelo.Parcelo";

    explicit Bundle(std::filesystem::path folder);

    // The folder of the executable when that is one, which it is for the window; else
    // ../libexec/parcelo beside it. In the build tree as when installed.
    static const Bundle& main();

    // For tests and for programs that embed this one. Not while another thread uses main().
    static void setMain(Bundle bundle);

    // The resource's path when there is one; an empty type: the name has no extension.
    [[nodiscard]] std::optional<std::filesystem::path> pathForResource(
        const std::string& resource, const std::string& ofType = {}) const;

    // The folder itself.
    [[nodiscard]] const std::filesystem::path& bundlePath() const { return _folder; }

    // The running program, whatever the bundle; empty where the system does not tell.
    [[nodiscard]] static std::filesystem::path executablePath();

    // What Contents/Info.plist held when it was first asked for, by any thread; empty when it
    // cannot be read.
    [[nodiscard]] const PropertyList::Dictionary& infoDictionary() const;
    [[nodiscard]] std::optional<PropertyList::Value> objectForInfoDictionaryKey(
        const std::string& key) const;

    // The same where it is text, else nothing of it.
    [[nodiscard]] std::string stringForInfoDictionaryKey(const std::string& key) const;

private:
    struct Information;

    static Bundle& _main();

    std::filesystem::path _folder;
    std::shared_ptr<Information> _information; // read once for all copies
};
