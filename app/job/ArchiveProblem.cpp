#include "app/job/ArchiveProblem.h"

#include <map>
#include <string_view>

// As Qt has it, which this floor does not know: the text stays, and is found by who translates.
#define QT_TRANSLATE_NOOP(context, text) text

namespace
{

using Kind = ArchiveProblem::Kind;

struct Words {
    const char* cause; // %1 is the path, %2 the reason
    bool isOfWriting = false; // to the destination
};

const std::map<Kind, Words> table{
    {Kind::noSuchType, {QT_TRANSLATE_NOOP("ArchiveProblem", "there is no such type of archive")}},
    {Kind::noTool,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "this system has no tool for that type (%1)")}},
    {Kind::cannotRunTool,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "a tool could not be started (%2)")}},
    {Kind::badName, {QT_TRANSLATE_NOOP("ArchiveProblem", "'%1' cannot be the name of an archive")}},
    {Kind::nothingGiven,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "there is nothing to archive"), true}},
    {Kind::nameless,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "'%1' has no name to be archived under")}},
    {Kind::unreadable, {QT_TRANSLATE_NOOP("ArchiveProblem", "'%1' cannot be read (%2)")}},
    {Kind::leadsNowhere, {QT_TRANSLATE_NOOP("ArchiveProblem", "'%1' leads to no file or folder")}},
    {Kind::replacesItem,
        {QT_TRANSLATE_NOOP(
            "ArchiveProblem", "the archive would replace '%1', which is to be in it")}},
    {Kind::nameOfFolder, {QT_TRANSLATE_NOOP("ArchiveProblem", "a folder has that name"), true}},
    {Kind::readOnlyDisk,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "the disk of that folder is read-only"), true}},
    {Kind::noPermission,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "you may not write in that folder"), true}},
    {Kind::noFolder,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "that folder cannot be used (%2)"), true}},
    {Kind::fullDisk,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "the disk of that folder is full"), true}},
    {Kind::cannotWrite, {QT_TRANSLATE_NOOP("ArchiveProblem", "the system says: %2"), true}},
    {Kind::fullTemporaryDisk,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "the disk for temporary files is full (%1)")}},
    {Kind::noWorkingFolder,
        {QT_TRANSLATE_NOOP("ArchiveProblem", "there is no working folder at %1")}},
    {Kind::toolFailed, {QT_TRANSLATE_NOOP("ArchiveProblem", "a tool failed (%2)")}},
    {Kind::nothingMade, {QT_TRANSLATE_NOOP("ArchiveProblem", "the tool has made nothing"), true}},
    {Kind::other, {QT_TRANSLATE_NOOP("ArchiveProblem", "the system says: %2")}},
};

// What the system and our tools often give as a reason, for who translates.
[[maybe_unused]] constexpr const char* frequentReasons[] = {
    QT_TRANSLATE_NOOP("ArchiveProblem", "Permission denied"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "No such file or directory"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Operation not permitted"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Operation not supported"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Input/output error"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "No space left on device"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Disk quota exceeded"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Read-only file system"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "File too large"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "File name too long"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Not a directory"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Is a directory"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "File exists"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Too many levels of symbolic links"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Too many open files"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "Stale file handle"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "is a FIFO"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "is a socket"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "is a device"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "changed while it was read"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "is stored without some of its attributes"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "shrank while it was read"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "grew while it was read; stored up to its earlier size"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "was moved while it was read"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "was replaced while its folder was read"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "was replaced by a link while its folder was read"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "is a folder it lies in"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "links to nothing; stored as a link"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "links in a circle; stored as a link"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "links to a folder it lies in; stored as a link"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "does not tell its size; stored empty"),
    QT_TRANSLATE_NOOP("ArchiveProblem", "not a file on this computer"),
};

// In one pass: a mark within what is filled in is none.
std::string filled(std::string_view text, const std::string& first, const std::string& second)
{
    std::string whole;
    while (!text.empty()) {
        const bool isMark = text.starts_with("%1") || text.starts_with("%2");
        if (isMark)
            whole += text[1] == '1' ? first : second;
        else
            whole += text.front();
        text.remove_prefix(isMark ? 2 : 1);
    }
    return whole;
}

std::string translated(const char* text, const ArchiveProblem::Translate& translate)
{
    return translate ? translate(text) : text;
}

} // namespace

std::string ArchiveProblem::consequence(const Translate& translate) const
{
    const char* text = nullptr;
    if (isOfReplacing)
        text = QT_TRANSLATE_NOOP("ArchiveProblem", "Unable to replace existing file at '%1'");
    else if (table.at(kind).isOfWriting)
        text = QT_TRANSLATE_NOOP("ArchiveProblem", "Unable to write to '%1'");
    return text == nullptr ? std::string() : filled(translated(text, translate), archive, {});
}

std::string ArchiveProblem::cause(const Translate& translate) const
{
    return filled(translated(table.at(kind).cause, translate), path,
        reason.empty() ? reason : translated(reason.c_str(), translate));
}

std::string ArchiveProblem::line() const
{
    const std::string what = consequence();
    return what.empty() ? cause() : what + ": " + cause();
}
