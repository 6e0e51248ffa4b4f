#include "platform/desktop/services/ScriptReader.h"

#include <gtest/gtest.h>

using namespace std::string_literals;
using namespace ScriptReader;

namespace
{

// The script that the program says for an attachment.
std::string mailScript(const std::string& path)
{
    return "tell application \"Mail\"\nset _m to make outgoing message\ntell _m\n"
           "set visible to true\ntell content\nset _f to \""
        + path
        + "\"\nmake new attachment with properties {file name:_f} at after the last character\n"
          "end tell\nend tell\nactivate\nend tell\n";
}

std::string systemEvents(const std::string& text)
{
    return "tell application \"System Events\"\r\n" + text + "\n end tell";
}

} // namespace

TEST(ScriptReader, understandsWhatTheProgramSaysAndTakesAnythingElseForAnError)
{
    const std::string make = "make new login item at end with properties {path:\"/My App\",hidden:";
    const std::string hostile = "/it's, 50% & #\\n \xff\n}.zip";
    const std::pair<std::string, std::optional<std::vector<Command>>> cases[] = {
        {"", std::vector<Command>()},
        {mailScript(hostile), {{ComposeMessage{hostile}}}},
        {systemEvents(make + "true}\ndelete login item \"\"\n" + make + "false}") + "\n\n"
                + mailScript("/a"),
            {{MakeLoginItem{"/My App", true}, DeleteLoginItem{""}, MakeLoginItem{"/My App", false},
                ComposeMessage{"/a"}}}},
        {mailScript("/a\" & (do shell script \"id\") & \""), {}}, // a quote ends the path
        {mailScript("/a\0b"s), {}},
        {mailScript("/a") + "x", {}},
        {mailScript("/a").substr(0, 200), {}},
        {systemEvents(make + "maybe}"), {}},
        {systemEvents(make + "true}" + make + "true}"), {}},
        {systemEvents("delete login item \"a\"b\""), {}},
        {systemEvents("delete login item \"a"), {}},
        {make + "true}", {}},
    };
    for (const auto& [source, commands] : cases)
        EXPECT_EQ(ScriptReader::read(source), commands) << source;
}
