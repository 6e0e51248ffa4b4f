#pragma once

#include <filesystem>
#include <optional>
#include <string>

// A folder that holds what belongs to a program: its resources in Contents/Resources. The main
// bundle is the running program's.
class Bundle
{
public:
    static constexpr const char* name = "Parcelo";
    static constexpr const char* bundleIdentifier = "org.parcelo.Parcelo";

    explicit Bundle(std::filesystem::path folder);

    // ../libexec/parcelo beside the folder of the executable, in the build tree as when installed.
    static const Bundle& main();

    // For tests and for programs that embed this one. Not while another thread uses main().
    static void setMain(Bundle bundle);

    // The resource's path when there is one; an empty type: the name has no extension.
    [[nodiscard]] std::optional<std::filesystem::path> pathForResource(
        const std::string& resource, const std::string& ofType = {}) const;

private:
    static Bundle& _main();

    std::filesystem::path _folder;
};
