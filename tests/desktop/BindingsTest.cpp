// A form and the properties of a controller it is bound to.

#include "tests/desktop/BindingsTest.h"

#include "platform/desktop/settings/Bindings.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace
{

template <typename Object>
Object* add(QWidget* form, const QString& name, const char* kind, const QString& property)
{
    auto* object = new Object(form);
    object->setObjectName(name);
    object->setProperty(kind, property);
    return object;
}

class BindingsTest : public testing::Test
{
protected:
    BindingsTest()
    {
        types->addItem(QStringLiteral("Zip"), 1);
        types->addItem(QStringLiteral("Zip for Mac"), 3);
        ok->setProperty("visibleBy", QStringLiteral("isOpen"));
        EXPECT_EQ(Bindings::bind(&form, &controller), QStringList());
    }

    BindingsTestController controller;
    QWidget form;
    QLineEdit* name
        = add<QLineEdit>(&form, QStringLiteral("name"), "boundTo", QStringLiteral("filename"));
    QLabel* preview
        = add<QLabel>(&form, QStringLiteral("preview"), "boundTo", QStringLiteral("filename"));
    QLabel* title
        = add<QLabel>(&form, QStringLiteral("title"), "boundTo", QStringLiteral("appName"));
    QCheckBox* open
        = add<QCheckBox>(&form, QStringLiteral("open"), "boundTo", QStringLiteral("isOpen"));
    QComboBox* types
        = add<QComboBox>(&form, QStringLiteral("types"), "boundTo", QStringLiteral("archiveType"));
    QPushButton* ok
        = add<QPushButton>(&form, QStringLiteral("ok"), "enabledBy", QStringLiteral("isValid"));
    QAction* action
        = add<QAction>(&form, QStringLiteral("action"), "enabledBy", QStringLiteral("isValid"));
};

} // namespace

TEST_F(BindingsTest, theFormShowsTheController)
{
    EXPECT_EQ(title->text(), QStringLiteral("Parcelo"));
    EXPECT_EQ(types->currentIndex(), 0);
    EXPECT_FALSE(ok->isEnabled());
    EXPECT_FALSE(action->isEnabled());
    EXPECT_TRUE(ok->isHidden());

    controller.setFilename(QStringLiteral("Report"));
    controller.setProperty("archiveType", 3);
    controller.setProperty("isOpen", true);
    EXPECT_EQ(name->text(), QStringLiteral("Report"));
    EXPECT_EQ(preview->text(), QStringLiteral("Report"));
    EXPECT_TRUE(ok->isEnabled());
    EXPECT_TRUE(action->isEnabled());
    EXPECT_EQ(types->currentIndex(), 1);
    EXPECT_TRUE(open->isChecked());
    EXPECT_FALSE(ok->isHidden());
}

TEST_F(BindingsTest, theControllerTakesWhatTheUserChanges)
{
    QTest::keyClicks(name, QStringLiteral("a/b"));
    EXPECT_EQ(controller.filename, QStringLiteral("a:b"));
    EXPECT_EQ(name->text(), QStringLiteral("a:b")) << "what the controller made of it";
    EXPECT_EQ(preview->text(), QStringLiteral("a:b"));
    EXPECT_TRUE(ok->isEnabled());
    types->setCurrentIndex(1);
    EXPECT_EQ(controller.archiveType, 3);
    open->click();
    EXPECT_TRUE(controller.isOpen);
    EXPECT_FALSE(ok->isHidden());
}

TEST_F(BindingsTest, typingInTheMiddleKeepsTheCursorThere)
{
    controller.setFilename(QStringLiteral("ac"));
    name->setCursorPosition(1);
    QTest::keyClicks(name, QStringLiteral("bb"));
    EXPECT_EQ(controller.filename, QStringLiteral("abbc"));
    EXPECT_EQ(name->cursorPosition(), 3);
}

TEST_F(BindingsTest, namesWhatItCannotBind)
{
    QWidget wrong;
    add<QLineEdit>(&wrong, QStringLiteral("a"), "boundTo", QStringLiteral("fileName"));
    add<QLineEdit>(&wrong, QStringLiteral("b"), "enabledBy", QStringLiteral("valid"));
    add<QWidget>(&wrong, QStringLiteral("c"), "boundTo", QStringLiteral("filename"));
    EXPECT_EQ(Bindings::bind(&wrong, &controller).join(QStringLiteral(", ")),
        QStringLiteral("a: fileName, b: valid, c: filename"));
}

TEST_F(BindingsTest, eitherSideMayGoFirst)
{
    delete name;
    controller.setFilename(QStringLiteral("x"));
    EXPECT_EQ(preview->text(), QStringLiteral("x"));

    QWidget lasting;
    auto* edit
        = add<QLineEdit>(&lasting, QStringLiteral("edit"), "boundTo", QStringLiteral("filename"));
    {
        BindingsTestController brief;
        EXPECT_EQ(Bindings::bind(&lasting, &brief), QStringList());
    }
    QTest::keyClicks(edit, QStringLiteral("y"));
    EXPECT_EQ(edit->text(), QStringLiteral("y"));
}
