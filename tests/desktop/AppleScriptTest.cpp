#include "platform/desktop/services/AppleScript.h"

#include "platform/desktop/services/LoginItems.h"
#include "platform/desktop/services/MailComposer.h"
#include "tests/desktop/StandIns.h"

#include <gtest/gtest.h>

namespace
{

class NotingComposer : public MailComposer
{
public:
    bool composeMessage(const std::filesystem::path& attachment) override
    {
        attachments.push_back(attachment);
        return attachment != "/missing";
    }

    std::vector<std::filesystem::path> attachments;
};

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
    return "tell application \"System Events\"\n" + text + "\nend tell";
}

bool run(const std::string& source)
{
    return AppleScript::initWithSource(source).executeAndReturnError();
}

} // namespace

TEST(AppleScript, composesMessagesByTheMailComposer)
{
    NotingComposer composer;
    MailComposer::setSharedComposer(&composer);
    EXPECT_TRUE(run(mailScript("/a b\xff.zip")));
    EXPECT_FALSE(run(mailScript("/a\"b.zip"))); // a quote breaks the script
    EXPECT_FALSE(run(mailScript("/missing") + mailScript("/behind")));
    EXPECT_FALSE(run(mailScript("/c") + "say \"hello\""));
    MailComposer::setSharedComposer(nullptr);
    EXPECT_EQ(
        composer.attachments, (std::vector<std::filesystem::path>{"/a b\xff.zip", "/missing"}));
}

TEST(AppleScript, makesAndDeletesLoginItems)
{
    const support::TestFolder folder;
    const standins::EnvironmentVariable users("XDG_CONFIG_HOME", folder.path());
    const standins::EnvironmentVariable systems("XDG_CONFIG_DIRS", folder / "none");
    const auto make = [](const std::string& path, const std::string& hidden) {
        return systemEvents("make new login item at end with properties {path:\"" + path
            + "\",hidden:" + hidden + "}\n");
    };
    EXPECT_TRUE(run(make("/bin/true", "false")));
    EXPECT_TRUE(run(make("/bin/sh", "true")));
    EXPECT_FALSE(run(make("/bin/no\"quote", "true")));
    const std::vector<LoginItems::Record> both = {{"/bin/sh", true}, {"/bin/true", false}};
    EXPECT_EQ(LoginItems::list(), both);
    EXPECT_TRUE(run(systemEvents("delete login item \"true\"")));
    EXPECT_FALSE(run(systemEvents("delete login item \"true\""))) << "it is gone already";
    EXPECT_EQ(LoginItems::list(), std::vector{both.front()});
}
