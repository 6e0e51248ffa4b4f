#include "app/window/AdvertTextView.h"
#include "tests/window/Program.h"

#include <QMetaProperty>

using Preferences = Program;

TEST_F(Preferences, eachControlShowsItsSettingAndIsSavedByOKAlone)
{
    const std::pair<const char*, const char*> controls[] = {
        {"compressionLevel", "CompressionLevel"}, {"keepExtension", "KeepExtensionForDefaultName"},
        {"revealWhenComplete", "RevealWhenComplete"}, {"autoQuit", "AutoQuit"},
        {"stayRunning", "StayRunningOnWindowClose"}, {"checkAtStartup", "CheckAtStartup"},
        {"hideAdvertBtn", "HideAdvert"}};
    // The button that has the focus, the key pressed there, whether it saves.
    const std::tuple<const char*, Qt::Key, bool> endings[]
        = {{"acceptButton", Qt::Key_Escape, false}, {"cancelButton", Qt::Key_Space, false},
            {"cancelButton", Qt::Key_Return, true}, {"cancelButton", Qt::Key_Enter, true},
            {"acceptButton", Qt::Key_Space, true}};
    const auto textIn = [](const QWidget* control) {
        return control->metaObject()->userProperty().read(control).toString();
    };
    start({{"CompressionLevel", 2}});
    for (const auto& [name, key] : controls) {
        for (const auto& [focused, ending, saves] : endings) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(ending));
            QString expected = stored(key).toString();
            type(Qt::CTRL | Qt::Key_Comma);
            const QDialog* sheet = waitForSheet("Preference");
            auto* control = find<QWidget>(name);
            EXPECT_EQ(textIn(control), expected);
            QTest::keyClick(control, control->inherits("QSlider") ? Qt::Key_Right : Qt::Key_Space);
            EXPECT_NE(textIn(control), expected);
            EXPECT_EQ(stored(key).toString(), expected) << "not before OK";
            if (saves)
                expected = textIn(control);
            auto* button = sheet->findChild<QWidget*>(QLatin1String(focused));
            button->setFocus();
            QTest::keyClick(button, ending);
            EXPECT_FALSE(sheet->isVisible());
            EXPECT_EQ(stored(key).toString(), expected);
            EXPECT_EQ(
                find<AdvertTextView>("advertTextView")->isHidden(), stored("HideAdvert").toBool());
        }
    }
}
