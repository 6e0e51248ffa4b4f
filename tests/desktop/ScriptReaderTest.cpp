#include "platform/desktop/services/ScriptReader.h"

#include "tests/support/qt/QtTest.h"

using namespace ScriptReader;

// The script that the program says for an attachment; anything else is an error.
TEST(ScriptReader, readsTheMessageAndItsFileAndNothingElse)
{
    const std::string start
        = "tell application \"Mail\"\nset _m to make outgoing message\ntell _m\n"
          "set visible to true\ntell content\nset _f to \"";
    const std::string end = "\"\nmake new attachment with properties {file name:_f} at after the "
                            "last character\nend tell\nend tell\nactivate\nend tell\n";
    const std::string odd = "/it's, 50% & #\\n \xff\n}.zip";
    const std::pair<std::string, std::optional<std::vector<Command>>> cases[] = {
        {"", std::vector<Command>()},
        {start + odd + end + "\n" + start + "/a" + end,
            {{ComposeMessage{odd}, ComposeMessage{"/a"}}}},
        {start + "/a\" & (do shell script \"id\") & \"" + end, {}}, // a quote ends the path
        {start + "/a" + '\0' + "b" + end, {}},
        {start + "/a" + end + "x", {}},
        {start + "/a" + end.substr(0, 20), {}},
    };
    for (const auto& [source, commands] : cases)
        EXPECT_EQ(ScriptReader::read(source), commands) << source;
}
