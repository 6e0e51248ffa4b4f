#include "app/window/AdvertTextView.h"
#include "tests/window/Program.h"

#include <QMetaProperty>

#include <map>

class Preferences : public Program
{
protected:
    static std::string textIn(const QWidget* control)
    {
        return control->metaObject()->userProperty().read(control).toString().toStdString();
    }
};

TEST_F(Preferences, eachControlShowsItsSettingAndIsSavedByOKAlone)
{
    const std::map<const char*, const char*> controls{
        {"compressionLevel", "CompressionLevel"},
        {"keepExtension", "KeepExtensionForDefaultName"},
        {"revealWhenComplete", "RevealWhenComplete"},
        {"autoQuit", "AutoQuit"},
        {"stayRunning", "StayRunningOnWindowClose"},
        {"checkAtStartup", "CheckAtStartup"},
        {"hideAdvertBtn", "HideAdvert"},
    };
    // A key, pressed where the focus is (none: on the control that was edited); whether it saves.
    const std::tuple<const char*, Qt::Key, bool> endings[] = {
        {nullptr, Qt::Key_Escape, false},
        {"cancelButton", Qt::Key_Space, false},
        {nullptr, Qt::Key_Return, true},
        {"cancelButton", Qt::Key_Return, true},
        {"cancelButton", Qt::Key_Enter, true},
        {"acceptButton", Qt::Key_Space, true},
    };
    const auto allStored = [&] {
        std::map<std::string, std::string> values;
        for (const auto& [name, key] : controls)
            values[key] = stored(key).toString().toStdString();
        return values;
    };
    start({{"CompressionLevel", 2}});
    const int height = find<QWidget>("footBar")->height();
    for (const auto& [name, key] : controls) {
        for (const auto& [focused, ending, saves] : endings) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(ending));
            auto expected = allStored();
            type(Qt::CTRL | Qt::Key_Comma);
            const QDialog* sheet = waitForSheet("Preference");
            auto* control = find<QWidget>(name);
            EXPECT_EQ(textIn(control), expected.at(key));
            QTest::keyClick(control, control->inherits("QSlider") ? Qt::Key_Right : Qt::Key_Space);
            EXPECT_NE(textIn(control), expected.at(key));
            EXPECT_EQ(allStored(), expected) << "not before OK";
            if (saves)
                expected.at(key) = textIn(control);
            auto* focus = focused ? sheet->findChild<QWidget*>(QLatin1String(focused)) : control;
            focus->setFocus();
            QTest::keyClick(focus, ending);
            EXPECT_FALSE(sheet->isVisible());
            EXPECT_EQ(allStored(), expected);
            EXPECT_EQ(find<AdvertTextView>("advertTextView")->isHidden(),
                expected.at("HideAdvert") == "true");
        }
    }
    store("HideAdvert", true);
    startAgain();
    EXPECT_TRUE(find<AdvertTextView>("advertTextView")->isHidden());
    EXPECT_EQ(find<QWidget>("footBar")->height(), height) << "it keeps its place";
}
