// Controls of a form and the settings they are bound to.

#include "platform/desktop/settings/DefaultsController.h"

#include "tests/support/TestFolder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace
{

template <typename Control> Control* addControl(QWidget* form, const QString& key)
{
    auto* control = new Control;
    control->setObjectName(key);
    control->setProperty("defaultsKey", key);
    form->layout()->addWidget(control);
    return control;
}

class DefaultsControllerTest : public testing::Test
{
protected:
    DefaultsControllerTest()
    {
        types->addItem(QStringLiteral("Zip"), 1);
        types->addItem(QStringLiteral("Zip for Mac"), 3);
        positions->addItems({QStringLiteral("first"), QStringLiteral("second")});
        level->setMaximum(9);
        slider->setMaximum(9);
        options->setCheckable(true);
        defaults.registerDefaults({{QStringLiteral("ArchiveType"), 3},
            {QStringLiteral("CompressionLevel"), 6}, {QStringLiteral("Name"), QStringLiteral("x")},
            {QStringLiteral("Position"), 1}, {QStringLiteral("RevealWhenComplete"), true}});
        EXPECT_EQ(controller.bind(&form), QStringList());
    }

    QVariantList shown() const
    {
        return {reveal->isChecked(), radio->isChecked(), options->isChecked(), level->value(),
            slider->value(), types->currentData(), positions->currentIndex(), name->text()};
    }

    void editAll()
    {
        reveal->click();
        radio->click();
        QTest::keyClick(level, Qt::Key_Up);
        types->setCurrentIndex(0);
        positions->setCurrentIndex(0);
        name->selectAll();
        QTest::keyClicks(name, QStringLiteral("new"));
    }

    const support::TestFolder folder;
    UserDefaults defaults{folder / "a.conf"};
    QWidget form;
    QVBoxLayout* layout = new QVBoxLayout(&form);
    QCheckBox* reveal = addControl<QCheckBox>(&form, QStringLiteral("RevealWhenComplete"));
    QRadioButton* radio = addControl<QRadioButton>(&form, QStringLiteral("Radio"));
    QGroupBox* options = addControl<QGroupBox>(&form, QStringLiteral("Radio"));
    QSpinBox* level = addControl<QSpinBox>(&form, QStringLiteral("CompressionLevel"));
    QSlider* slider = addControl<QSlider>(&form, QStringLiteral("CompressionLevel"));
    QComboBox* types = addControl<QComboBox>(&form, QStringLiteral("ArchiveType"));
    QComboBox* positions = addControl<QComboBox>(&form, QStringLiteral("Position"));
    QLineEdit* name = addControl<QLineEdit>(&form, QStringLiteral("Name"));
    DefaultsController controller{defaults};

    const QVariantList stored{true, false, false, 6, 6, 3, 1, QStringLiteral("x")};
    const QVariantList edited{false, true, true, 7, 7, 1, 0, QStringLiteral("new")};
};

} // namespace

TEST_F(DefaultsControllerTest, editsAreStoredAtOnceUnlessTheyAreHeld)
{
    EXPECT_EQ(shown(), stored);
    editAll();
    EXPECT_EQ(shown(), edited);
    EXPECT_FALSE(controller.hasUnappliedChanges());
    EXPECT_FALSE(defaults.boolForKey(QStringLiteral("RevealWhenComplete")));
    EXPECT_TRUE(defaults.boolForKey(QStringLiteral("Radio")));
    EXPECT_EQ(defaults.integerForKey(QStringLiteral("CompressionLevel")), 7);
    EXPECT_EQ(defaults.integerForKey(QStringLiteral("ArchiveType")), 1);
    EXPECT_EQ(defaults.integerForKey(QStringLiteral("Position")), 0);
    EXPECT_EQ(defaults.stringForKey(QStringLiteral("Name")), QStringLiteral("new"));
}

TEST_F(DefaultsControllerTest, heldEditsWaitForSaveAndVanishWithRevert)
{
    int changes = 0;
    QObject::connect(&defaults, &UserDefaults::didChange, [&] { ++changes; });
    controller.setAppliesImmediately(false);

    editAll();
    EXPECT_EQ(shown(), edited);
    EXPECT_TRUE(controller.hasUnappliedChanges());
    controller.revert();
    EXPECT_EQ(shown(), stored);
    EXPECT_FALSE(controller.hasUnappliedChanges());
    EXPECT_EQ(changes, 0);

    reveal->click();
    reveal->click();
    EXPECT_FALSE(controller.hasUnappliedChanges()) << "it is what is stored";

    editAll();
    controller.save();
    EXPECT_EQ(shown(), edited);
    EXPECT_FALSE(controller.hasUnappliedChanges());
    EXPECT_EQ(changes, 6);
    controller.revert();
    EXPECT_EQ(shown(), edited);
}

TEST_F(DefaultsControllerTest, controlsFollowTheSettingsButKeepHeldEdits)
{
    controller.setAppliesImmediately(false);
    level->setValue(9);
    defaults.setInteger(1, QStringLiteral("CompressionLevel"));
    defaults.setBool(false, QStringLiteral("RevealWhenComplete"));
    EXPECT_EQ(slider->value(), 9);
    EXPECT_FALSE(reveal->isChecked());
    controller.revert();
    EXPECT_EQ(level->value(), 1);
}

TEST_F(DefaultsControllerTest, aValueThatCannotBeShownIsNotReplaced)
{
    defaults.setInteger(5000000000, QStringLiteral("CompressionLevel"));
    defaults.setInteger(2, QStringLiteral("ArchiveType"));
    EXPECT_EQ(level->value(), 9);
    EXPECT_EQ(types->currentIndex(), -1);
    controller.save();
    EXPECT_EQ(defaults.integerForKey(QStringLiteral("CompressionLevel")), 5000000000);
    EXPECT_EQ(defaults.integerForKey(QStringLiteral("ArchiveType")), 2);
}

TEST_F(DefaultsControllerTest, namesWhatItCannotBindAndForgetsWhatIsGone)
{
    QWidget other;
    other.setObjectName(QStringLiteral("pane"));
    other.setProperty("defaultsKey", QStringLiteral("Name"));
    EXPECT_EQ(controller.bind(&other), QStringList{QStringLiteral("pane")});

    delete slider;
    defaults.setInteger(2, QStringLiteral("CompressionLevel"));
    EXPECT_EQ(level->value(), 2);
}
