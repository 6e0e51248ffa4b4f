// The program and its window under a Wayland compositor.

#include "tests/support/ZipInspector.h"
#include "tests/support/qt/QtTest.h"
#include "tests/wayland/WaylandSession.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

using Strings = std::vector<std::string>;
using support::RunningProgram;

class Wayland : public ::testing::Test
{
protected:
    Wayland()
    {
        for (const char* name : {"home", "run"})
            std::filesystem::create_directories(folder / name);
        std::filesystem::permissions(folder / "run", std::filesystem::perms::owner_all);
        support::writeFile(source / "one.txt", "contents of one");
        support::writeFile(
            folder / "home/.config/parcelo/parcelo.conf", "[General]\nRevealWhenComplete=false\n");
    }

    std::unique_ptr<RunningProgram> start(const Strings& command)
    {
        Strings environment = session.environment();
        environment.insert(environment.end(),
            {"HOME=" + (folder / "home").native(), "XDG_RUNTIME_DIR=" + (folder / "run").native(),
                "PATH=/usr/bin"});
        return std::make_unique<RunningProgram>(command,
            support::RunOptions{.environment = environment, .timeout = std::chrono::seconds(240)});
    }

    // The title of the window that has the keys.
    std::string focused() const
    {
        const QByteArray tree = QByteArray::fromStdString(session.tell({"-t", "get_tree"}));
        return focusedIn(QJsonDocument::fromJson(tree).object()).toStdString();
    }
    void waitForFocused(const std::string& title)
    {
        if (!QTest::qWaitFor([&] { return focused() == title; }, 30000))
            throw std::runtime_error(title + " has not got the keys; they are with " + focused());
    }

    // In the file manager, which has the keys; where the item is.
    QPoint select()
    {
        constexpr int x = 210;
        int y = 0;
        const auto isSelected = [&] {
            session.xdotool({"key", "ctrl+a"});
            const auto colors = session.column({x, 100}, 200);
            const auto found = std::ranges::find(colors, 0x3584E4U); // the style's
            y = 100 + static_cast<int>(found - colors.begin());
            return found != colors.end();
        };
        if (!QTest::qWaitFor(isSelected, 30000))
            throw std::runtime_error("nothing gets selected");
        return {x, y};
    }
    void drag(QPoint from, QPoint to)
    {
        for (const double share : {0.0, 0.01, 0.02, 0.04, 0.2, 0.4, 0.6, 0.8, 0.99, 1.0}) {
            const QPoint at = from + (to - from) * share;
            session.xdotool({"mousemove", std::to_string(at.x()), std::to_string(at.y())});
            if (share == 0)
                session.xdotool({"mousedown", "1"});
            QTest::qWait(30);
        }
    }

    const support::TestFolder folder;
    const std::filesystem::path source = folder / "src";
    const WaylandSession session;

private:
    static QString focusedIn(const QJsonObject& node)
    {
        if (node["focused"].toBool())
            return node["name"].toString();
        for (const char* kind : {"nodes", "floating_nodes"})
            for (const QJsonValue child : node[QLatin1String(kind)].toArray())
                if (const QString found = focusedIn(child.toObject()); !found.isEmpty())
                    return found;
        return {};
    }
};

} // namespace

TEST_F(Wayland, aFileDraggedFromAFileManagerIsArchived)
{
    const auto parcelo = start({PARCELO_PROGRAM});
    waitForFocused("Parcelo");
    const auto fileManager = start({"thunar", source});
    waitForFocused("src - Thunar");
    const QPoint item = select();
    const auto isHovered = [&] { return session.column({780, 60}, 1).front() == 0x999999; };
    drag(item, {810, 150});
    EXPECT_TRUE(QTest::qWaitFor(isHovered));
    session.xdotool({"mouseup", "1"});
    waitForFocused("Save Archive");
    EXPECT_FALSE(isHovered());
    session.xdotool({"key", "Return"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return exists(source / "one.zip"); }, 20000));
    waitForFocused("Parcelo");
    EXPECT_EQ(support::inspectZip(source / "one.zip").names(), Strings{"one.txt"});
    EXPECT_TRUE(exists(source / "one.txt"));
    session.xdotool({"key", "ctrl+q"});
    EXPECT_EQ(parcelo->wait().status, 0);
}

// By the file manager, which hands over a token of the compositor's.
TEST_F(Wayland, aLaterStartBringsTheWindowToTheFront)
{
    // Without the file: its sheet would take the keys anyhow.
    support::writeFile(folder / "home/.local/share/applications/parcelo.desktop",
        "[Desktop Entry]\nType=Application\nName=Parcelo\nExec=sh -c " PARCELO_PROGRAM
        "\nStartupNotify=true\nMimeType=text/plain;\n");
    support::writeFile(folder / "home/.config/mimeapps.list",
        "[Default Applications]\ntext/plain=parcelo.desktop\n");
    const auto parcelo = start({PARCELO_PROGRAM});
    waitForFocused("Parcelo");
    const auto fileManager = start({"thunar", source});
    waitForFocused("src - Thunar");
    (void)select();
    session.xdotool({"key", "ctrl+o"});
    waitForFocused("Parcelo");
    session.xdotool({"key", "ctrl+q"});
    EXPECT_EQ(parcelo->wait().status, 0);
}

TEST_F(Wayland, allTestsOfTheWindowPass)
{
    const support::RunResult result = start({PARCELO_TEST_WINDOW})->wait();
    EXPECT_EQ(result.status, 0) << result.out << result.err;
}
