#include "platform/desktop/settings/DefaultsController.h"

#include "system/FileDescriptor.h"
#include "tests/support/TestFolder.h"

#include <QCheckBox>
#include <QSlider>

#include <gtest/gtest.h>
#include <sys/inotify.h>

namespace
{

// How many files of a folder were replaced since it was watched for IN_MOVE: the one half of that
// alone would be told once for many.
int replacements(const FileDescriptor& watch)
{
    alignas(inotify_event) char events[4096];
    const ssize_t size = ::read(watch.number(), events, sizeof events);
    int count = 0;
    for (ssize_t at = 0; at < size;) {
        const auto* event = reinterpret_cast<const inotify_event*>(events + at);
        count += event->mask == IN_MOVED_TO ? 1 : 0;
        at += static_cast<ssize_t>(sizeof *event + event->len);
    }
    return count;
}

} // namespace

TEST(DefaultsController, holdsEditsUntilTheyAreSavedInOneWriteOrDropped)
{
    const support::TestFolder folder;
    UserDefaults defaults(folder / "a/b/settings");
    defaults.setInteger(5'000'000'000, "Level"); // more than there is to be shown
    QWidget form;
    QCheckBox quit(&form);
    quit.setProperty("defaultsKey", "Quit");
    auto* level = new QSlider(&form);
    level->setProperty("defaultsKey", "Level");
    level->setMaximum(9);
    DefaultsController controller(defaults);
    controller.bind(&form);
    const auto shows = [&](bool isOn, int number) {
        return quit.isChecked() == isOn && level->value() == number;
    };
    const auto stores = [&](bool isOn, qint64 number) {
        return defaults.boolForKey("Quit") == isOn && defaults.integerForKey("Level") == number;
    };
    const auto edit = [&] {
        quit.click();
        level->setValue(3);
    };
    EXPECT_TRUE(shows(false, 9));
    controller.save();
    EXPECT_TRUE(stores(false, 5'000'000'000));
    edit();
    EXPECT_TRUE(shows(true, 3) && stores(false, 5'000'000'000));
    controller.revert();
    EXPECT_TRUE(shows(false, 9));

    edit();
    defaults.setInteger(7, "Level"); // by somebody else: what is edited stays as it is
    const FileDescriptor watch(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    ASSERT_GE(::inotify_add_watch(watch.number(), (folder / "a/b").c_str(), IN_MOVE), 0);
    controller.save();
    EXPECT_EQ(replacements(watch), 1);
    EXPECT_TRUE(shows(true, 3) && stores(true, 3));
    delete level;
    defaults.setBool(false, "Quit");
    EXPECT_FALSE(quit.isChecked());
}
