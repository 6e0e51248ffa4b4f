#include "platform/desktop/services/ScriptReader.h"

#include <gtest/gtest.h>

using namespace std::string_literals;
using ScriptReader::Command;
using ScriptReader::ComposeMessage;
using ScriptReader::DeleteLoginItem;
using ScriptReader::MakeLoginItem;

namespace
{

// The script that the program says for an attachment.
std::string mailScript(const std::string& path, const std::string& lineBreak = "\n")
{
    const std::string lines[] = {"tell application \"Mail\"", "set _m to make outgoing message",
        "tell _m", "set visible to true", "tell content", "set _f to \"" + path + "\"",
        "make new attachment with properties {file name:_f} at after the last character",
        "end tell", "end tell", "activate", "end tell"};
    std::string text;
    for (const std::string& line : lines)
        text += line + lineBreak;
    return text;
}

std::string systemEvents(const std::string& text)
{
    return "tell application \"System Events\"\n" + text + "\nend tell";
}

std::string replaced(std::string text, const std::string& from, const std::string& by)
{
    return text.replace(text.find(from), from.size(), by);
}

} // namespace

TEST(ScriptReader, understandsWhatTheProgramSays)
{
    const std::string make
        = "make new login item at end with properties {path:\"/opt/My App/x\",hidden:";
    const std::string hostile = "/it's, 50% & #\\n \xff\n}.zip";
    const std::pair<std::string, std::vector<Command>> cases[] = {
        {"", {}},
        {mailScript("/a b.zip"), {ComposeMessage{"/a b.zip"}}},
        {mailScript(hostile), {ComposeMessage{hostile}}},
        {mailScript("/a", "\r\n"), {ComposeMessage{"/a"}}},
        {"\n" + mailScript("/a", " \r\t"), {ComposeMessage{"/a"}}},
        {systemEvents(make + "true}\n"), {MakeLoginItem{"/opt/My App/x", true}}},
        {systemEvents(make + "false}"), {MakeLoginItem{"/opt/My App/x", false}}},
        {systemEvents("delete login item \"Parcelo\""), {DeleteLoginItem{"Parcelo"}}},
        {systemEvents(make + "true}\ndelete login item \"\"") + "\n" + mailScript("/a"),
            {MakeLoginItem{"/opt/My App/x", true}, DeleteLoginItem{""}, ComposeMessage{"/a"}}},
        {systemEvents(""), {}},
    };
    for (const auto& [source, commands] : cases)
        EXPECT_EQ(ScriptReader::read(source), commands) << source;
}

TEST(ScriptReader, takesAnythingElseForAnError)
{
    const std::string make = "make new login item at end with properties {path:\"/x\",hidden:true}";
    const std::string mail = mailScript("/a");
    const std::string cases[] = {
        mailScript("/a\"b"), // a quote ends the path
        mailScript("/a\" & (do shell script \"id\") & \""),
        mailScript("/a\0b"s),
        replaced(mail, "activate\n", ""),
        replaced(mail, "activate", "activate it"),
        replaced(mail, "\n", " "),
        replaced(mail, "Mail", "Finder"),
        replaced(mail, "tell _m\n", "tell _m\ndelete it\n"),
        mail + "x",
        mail.substr(0, mail.size() - 2),
        "set _f to \"/a\"",
        systemEvents("make login item"),
        systemEvents(make + make),
        systemEvents(replaced(make, "true", "maybe")),
        systemEvents("delete login item \"a\"b\""),
        systemEvents("delete login item Parcelo"),
        systemEvents("delete login item \"Parcelo"),
        "tell application \"System Events\"\n" + make,
        make,
    };
    for (const std::string& source : cases)
        EXPECT_EQ(ScriptReader::read(source), std::nullopt) << source;
}
