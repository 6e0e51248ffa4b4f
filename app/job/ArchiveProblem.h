// Why an archive was not made, so that each front can say it in its user's language: a kind, what
// it is about, and the system's or a tool's own words.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

struct ArchiveProblem {
    enum class Kind {
        noSuchType,
        noTool, // the path: of the first one that is missing
        cannotRunTool,
        badName,
        nothingGiven,
        nameless, // the path: an item without a name of its own
        unreadable, // the path: an item that is gone, or of which nothing could be read
        leadsNowhere, // the path: an item
        replacesItem, // the path: the item
        nameOfFolder,
        readOnlyDisk, // that of the destination, as those below
        noPermission,
        noFolder,
        fullDisk,
        cannotWrite,
        fullTemporaryDisk, // the path: the working folder
        noWorkingFolder, // the path: where it should be
        toolFailed, // the reason: its status, and what it said last
        nothingMade, // though the tool ended well
        other,
    };
    // Gives a text of the table in another language.
    using Translate = std::function<std::string(const char* text)>;

    Kind kind = Kind::other;
    std::filesystem::path archive = {}; // where it was to stand
    std::filesystem::path path = {};
    std::string reason = {};
    bool isOfReplacing = false; // of what cannot be written: an older archive is in the way

    // "Unable to write to '/d/a.zip'", or nothing where it just was not made; and why: "the disk of
    // that folder is full". Without a full stop, in English where nobody translates.
    [[nodiscard]] std::string consequence(const Translate& translate = {}) const;
    [[nodiscard]] std::string cause(const Translate& translate = {}) const;

    // Both in one line of English.
    [[nodiscard]] std::string line() const;
};
