// What the desktop is told of a long job, and how it answers.

#include "platform/desktop/services/Inhibitor.h"
#include "platform/desktop/services/Notification.h"
#include "tests/desktop/StandIns.h"

#include <QElapsedTimer>
#include <QSignalSpy>

#include <regex>

#include <sys/socket.h>
#include <sys/un.h>

using standins::Programs;
using standins::signal;
using enum standins::Answer;

namespace
{

const std::string notifications = "org.freedesktop.Notifications";

bool waitForCalls(const Programs& programs, const std::string& calls)
{
    // The picture stands where the program was built, if it was.
    const std::regex icon("<(file:///[^>]*)?org.parcelo.Parcelo(.png)?> <(?=[ae])");
    std::string got;
    return QTest::qWaitFor(
               [&] {
                   got = std::regex_replace(programs.calls(), icon, "<ICON> <");
                   return got == calls;
               },
               5000)
        || (ADD_FAILURE() << got, false);
}

} // namespace

TEST(Inhibitor, holdsOffByTheFirstMeansThatWorksAndLetsGo)
{
    const std::string portal = "org.freedesktop.portal.Inhibit.Inhibit <> <5> <reason=why;>\n";
    const std::string login
        = "org.freedesktop.login1.Manager.Inhibit <sleep:shutdown> <Parcelo> <why> <block>\n";
    const std::string gnome = "org.gnome.SessionManager.";
    const std::string power = "org.freedesktop.PowerManagement.Inhibit.";
    using standins::Answer;
    // Of the portal, logind and two session managers; what they are asked, and when it is let go.
    const std::tuple<Answer, Answer, Answer, Answer, std::string, std::string> cases[] = {
        {done, yes, yes, yes, portal, "org.freedesktop.portal.Request.Close\n"},
        {failed, yes, yes, yes, portal + login, "let go\n"},
        {none, error, yes, yes, login + gnome + "Inhibit <org.parcelo.Parcelo> <0> <why> <5>\n",
            gnome + "Uninhibit <5>\n"},
        {none, none, none, yes, power + "Inhibit <Parcelo> <why>\n", power + "UnInhibit <5>\n"},
    };
    for (const auto& [asPortal, asLogin, asGnome, asPower, asked, letGo] : cases) {
        const Programs programs;
        const auto services
            = {standins::serve("org.freedesktop.portal.Desktop", asPortal, programs).release(),
                standins::serve("org.freedesktop.login1", asLogin, programs).release(),
                standins::serve("org.gnome.SessionManager", asGnome, programs).release(),
                standins::serve("org.freedesktop.PowerManagement", asPower, programs).release()};
        Inhibitor inhibitor;
        inhibitor.hold("why");
        EXPECT_TRUE(waitForCalls(programs, asked));
        inhibitor.release(); // also before it has the answer
        EXPECT_TRUE(waitForCalls(programs, asked + letGo));
        for (QObject* service : services)
            delete service;
    }
}

TEST(Inhibitor, neverWaitsForABusThatHangs)
{
    const support::TestFolder folder;
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    folder.path().native().copy(address.sun_path, sizeof address.sun_path - 5);
    std::strcat(address.sun_path, "/bus");
    const FileDescriptor mute(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(::bind(mute.number(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(mute.number(), 5), 0);
    const support::EnvironmentVariable bus(
        "DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + (folder / "bus").native());
    QElapsedTimer time;
    time.start();
    Inhibitor inhibitor;
    inhibitor.hold("why");
    QTest::qWait(300);
    EXPECT_LT(time.elapsed(), 2000);
}

TEST(Notification, isReplacedInPlaceAndHeard)
{
    const Programs programs;
    const auto service = standins::serve("org.freedesktop.Notifications", yes, programs);
    Notification notification;
    std::string heard;
    QObject::connect(&notification, &Notification::invoked, &notification,
        [&](const QString& action, const QByteArray& token) {
            heard += action.toStdString() + " " + token.toStdString() + ";";
        });
    QObject::connect(&notification, &Notification::gone, &notification, [&] { heard += "gone;"; });
    notification.show({.title = "passed over"});
    notification.show({.kind = Notification::Kind::progress,
        .title = "a<b",
        .text = "c<d",
        .actions = {{"cancel", "Cancel"}},
        .percent = 42});
    std::string calls = notifications + ".GetCapabilities\n" + notifications
        + ".Notify <Parcelo> <0> <ICON> <a<b> <c&lt;d> <cancel Cancel> "
          "<category=transfer;desktop-entry=org.parcelo.Parcelo;transient=true;urgency=0;value=42;>"
          " "
          "<0>\n";
    EXPECT_TRUE(waitForCalls(programs, calls));
    EXPECT_TRUE(QTest::qWaitFor([&] {
        signal("ActivationToken", {7U, "token"});
        signal("ActionInvoked", {8U, "another's"});
        signal("ActionInvoked", {7U, "cancel"});
        return !heard.empty();
    }));
    notification.show({.kind = Notification::Kind::failed, .title = "e"});
    calls += notifications
        + ".Notify <Parcelo> <7> <ICON> <e> <> <> "
          "<category=transfer.error;desktop-entry=org.parcelo.Parcelo;transient=false;"
          "urgency=1;> <-1>\n";
    EXPECT_TRUE(waitForCalls(programs, calls));
    EXPECT_TRUE(heard.starts_with("cancel token;"));
    heard.clear();
    signal("NotificationClosed", {7U, 2U});
    EXPECT_TRUE(QTest::qWaitFor([&] { return heard == "gone;"; }));
}

TEST(Notification, isGoneWhenItIsClosedAndWhenThereIsNobodyToShowItAnyMore)
{
    enum class End { neverShown, closed, serviceEnds };
    for (const End end : {End::neverShown, End::closed, End::serviceEnds}) {
        const Programs programs;
        auto service = standins::serve(
            "org.freedesktop.Notifications", end == End::neverShown ? none : yes, programs);
        Notification notification;
        QSignalSpy gone(&notification, &Notification::gone);
        notification.show({.title = "a"});
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return end == End::neverShown || programs.calls().find(".Notify") != std::string::npos;
        }));
        if (end == End::closed)
            notification.close(); // before the answer came
        else
            service.reset();
        EXPECT_TRUE(QTest::qWaitFor([&] { return gone.count() == 1; }));
        EXPECT_FALSE(notification.isShown());
        EXPECT_EQ(programs.calls().ends_with(notifications + ".CloseNotification <7>\n"),
            end == End::closed);
    }
}
