// What the program's arguments ask for. Parsing looks at nothing but the arguments.
#pragma once

#include "shared/Library/Archiver/Archiver.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct CommandLine {
    enum class Request { archive, window, help, version, wrongUsage };

    static CommandLine parse(const std::vector<std::string>& arguments);
    static std::string usage();

    Request request = Request::window;
    std::string problem; // with wrongUsage: what is wrong

    std::vector<std::filesystem::path> files; // as given
    std::string windowOption; // of the window alone, as given; empty for none
    std::optional<std::filesystem::path> toFolder;
    std::optional<std::string> name; // fit for a file name, without the type's extension
    int type = ArchiveTypePlainZip;
    int level = 6;
    bool excludeDSStore = true;
    bool passwordFromInput = false;
    bool quiet = false;

    // What the type's archives end in: ".zip" and so on.
    [[nodiscard]] std::string extension() const;
};
