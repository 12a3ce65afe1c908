// Whether windows can be moved here, and how the user is told where they cannot: on a server whose
// window manager is the test itself.

#include <FakeMainLoop.h>
#include <FakeUserNotifications.h>
#include <Waiting.h>
#include <X11/X11EventMonitors.h>
#include <X11/X11Properties.h>
#include <X11/X11Trust.h>
#include <XServer.h>

#include <QSignalSpy>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <tuple>
#include <xcb/xinput.h>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

/// The latest version of XInput that is asked for: what the server offers a client is no later.
struct {
    std::uint16_t major = 2;
    std::uint16_t minor = 2;
} inputVersion;

} // namespace

/// Found before the library's own function.
xcb_input_xi_query_version_cookie_t
xcb_input_xi_query_version(xcb_connection_t* connection, std::uint16_t major, std::uint16_t minor) {
    const auto own = reinterpret_cast<decltype(&xcb_input_xi_query_version)>(
        dlsym(RTLD_NEXT, "xcb_input_xi_query_version"));
    return std::tie(inputVersion.major, inputVersion.minor) < std::tie(major, minor)
               ? own(connection, inputVersion.major, inputVersion.minor)
               : own(connection, major, minor);
}

namespace {

/// Whether a window manager's check window names itself by the time that the root window names it.
enum class CheckWindow { bearsItsNumber, bearsNothingYet };

/// Says that it is a window manager, and what it offers, on a connection of its own; its end is a
/// crash: what it wrote on the root window stays.
class PretendedWindowManager {
public:
    PretendedWindowManager(const QString& display, const std::vector<X11Atom>& offers,
                           CheckWindow checkWindow = CheckWindow::bearsItsNumber)
        : connection_(X11Connection::open(display))
        , window_(xcb_generate_id(connection_->xcb())) {
        makeWindow();
        offer(offers);
        if (checkWindow == CheckWindow::bearsItsNumber)
            nameWindow();
        nameOnRoot();
        sync();
    }
    /// Has the check window name itself.
    void nameWindow() {
        set(window_, X11Atom::netSupportingWmCheck, XCB_ATOM_WINDOW, {window_});
        connection_->flush();
    }
    /// Ends its check window and makes another one, which has the same number.
    void makeWindowAnew() {
        xcb_destroy_window(connection_->xcb(), window_);
        makeWindow();
        nameWindow();
        nameOnRoot();
        sync();
    }
    void offer(const std::vector<X11Atom>& offers) {
        std::vector<std::uint32_t> atoms;
        atoms.reserve(offers.size());
        for (const X11Atom atom : offers)
            atoms.push_back(connection_->atom(atom));
        set(connection_->root(), X11Atom::netSupported, XCB_ATOM_ATOM, atoms);
        connection_->flush();
    }

private:
    void makeWindow() {
        xcb_create_window(connection_->xcb(), XCB_COPY_FROM_PARENT, window_, connection_->root(), 0,
                          0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                          nullptr);
    }
    void nameOnRoot() {
        set(connection_->root(), X11Atom::netSupportingWmCheck, XCB_ATOM_WINDOW, {window_});
    }
    /// Returns once the server has done what was asked so far.
    void sync() {
        EXPECT_TRUE(connection_->reply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus(connection_->xcb())));
    }
    void set(xcb_window_t window, X11Atom property, xcb_atom_t type,
             const std::vector<std::uint32_t>& items) {
        xcb_change_property(connection_->xcb(), XCB_PROP_MODE_REPLACE, window,
                            connection_->atom(property), type, 32,
                            static_cast<std::uint32_t>(items.size()), items.data());
    }

    std::unique_ptr<X11Connection> connection_;
    xcb_window_t window_;
};

// How windows are moved need not be announced: every window manager lets clients ask.
const std::vector<X11Atom> whatIsNeeded{X11Atom::netActiveWindow};
const std::vector<X11Atom> tooLittle{X11Atom::netMoveresizeWindow};

class TrustInADesktop : public ::testing::Test {
protected:
    enum class Session { x11, wayland };
    using Lack = X11Trust::Lack;

    void SetUp() override { ASSERT_TRUE(server); }

    /// As at the program's start, in the state that the server is in by now.
    void start(Session session = Session::x11) {
        trust.reset();
        watch.reset();
        selection.reset();
        connection = X11Connection::open(server->display());
        ASSERT_TRUE(connection);
        selection = std::make_unique<X11EventSelection>(*connection);
        watch = std::make_unique<X11WindowManagerWatch>(*connection, *selection);
        trust = std::make_unique<X11Trust>(*connection, *watch, loop, notifications,
                                           session == Session::wayland);
    }
    [[nodiscard]] bool becomes(Lack lack) {
        return waitUntil([&] { return trust->lack() == lack; });
    }
    /// The texts that the user has been shown.
    [[nodiscard]] std::vector<QString> told() const {
        std::vector<QString> texts;
        texts.reserve(notifications.shown.size());
        for (const auto& [title, text] : notifications.shown)
            texts.push_back(text);
        return texts;
    }
    [[nodiscard]] static std::vector<QString> only(Lack lack) {
        return {X11Trust::explanation(lack)};
    }
    using Manager = std::unique_ptr<PretendedWindowManager>;
    [[nodiscard]] Manager
    startManager(const std::vector<X11Atom>& offers = whatIsNeeded,
                 CheckWindow checkWindow = CheckWindow::bearsItsNumber) const {
        return std::make_unique<PretendedWindowManager>(server->display(), offers, checkWindow);
    }
    /// What the server has told so far has been heard.
    void catchUp() {
        bool isAnswered = false;
        const auto answer = connection->whenAnswered<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus(connection->xcb()), [&](const auto&) { isAnswered = true; });
        EXPECT_TRUE(waitUntil([&] { return isAnswered; }));
    }

    const std::unique_ptr<XServer> server = XServer::virtualScreen({640, 480});
    FakeMainLoop loop;
    FakeUserNotifications notifications;
    std::unique_ptr<X11Connection> connection;
    std::unique_ptr<X11EventSelection> selection;
    std::unique_ptr<X11WindowManagerWatch> watch;
    std::unique_ptr<X11Trust> trust;
};

} // namespace

TEST_F(TrustInADesktop, IsThereAtOnceWhereTheWindowManagerOffersWhatIsNeeded) {
    const Manager manager = startManager();
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(becomes(Lack::nothing));
    EXPECT_TRUE(trust->request());
    loop.advance(std::chrono::seconds(60));
    EXPECT_TRUE(told().empty());
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(TrustInADesktop, WaitsTenSecondsForAWindowManagerBeforeItTellsTheUser) {
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_EQ(trust->lack(), Lack::windowManager);
    EXPECT_FALSE(trust->request());
    loop.advance(std::chrono::milliseconds(9999));
    EXPECT_TRUE(told().empty());
    loop.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(told(), only(Lack::windowManager));
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(TrustInADesktop, IsAskedAgainWhileItWaitsWithoutWaitingAnew) {
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_FALSE(trust->request());
    loop.advance(std::chrono::seconds(9));
    EXPECT_FALSE(trust->request());
    EXPECT_EQ(loop.activeTimerCount(), 1U);
    loop.advance(std::chrono::seconds(1));
    EXPECT_EQ(told(), only(Lack::windowManager));
}

TEST_F(TrustInADesktop, TellsNothingWhenAWindowManagerAppearsWhileItWaits) {
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_FALSE(trust->request());
    loop.advance(std::chrono::seconds(9));
    const Manager manager = startManager();
    EXPECT_TRUE(becomes(Lack::nothing));
    EXPECT_EQ(loop.activeTimerCount(), 0U) << "nothing is left to wait for";
    loop.advance(std::chrono::seconds(60));
    EXPECT_TRUE(told().empty());
    EXPECT_TRUE(trust->request());
}

TEST_F(TrustInADesktop, WaitsNoSecondTimeAfterAWindowManagerThatCameInTimeHasDied) {
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_FALSE(trust->request());
    {
        const Manager manager = startManager();
        EXPECT_TRUE(becomes(Lack::nothing));
    }
    EXPECT_TRUE(becomes(Lack::windowManager));
    EXPECT_FALSE(trust->request());
    EXPECT_EQ(told(), only(Lack::windowManager));
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(TrustInADesktop, IsAskedAgainWhileItWaitsForOffersWithoutTellingTwice) {
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_FALSE(trust->request());
    const Manager manager = startManager(tooLittle);
    EXPECT_TRUE(becomes(Lack::windowManagerSupport));
    EXPECT_FALSE(trust->request());
    EXPECT_TRUE(told().empty());
    loop.advance(std::chrono::seconds(10));
    EXPECT_EQ(told(), only(Lack::windowManagerSupport));
}

TEST_F(TrustInADesktop, JudgesAWindowManagerThatTellsItsOffersLateAtTheDeadline) {
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_FALSE(trust->request());
    const Manager manager = startManager(tooLittle);
    EXPECT_TRUE(becomes(Lack::windowManagerSupport));
    loop.advance(std::chrono::seconds(9));
    EXPECT_TRUE(told().empty());
    manager->offer(whatIsNeeded);
    EXPECT_TRUE(becomes(Lack::nothing));
    loop.advance(std::chrono::seconds(60));
    EXPECT_TRUE(told().empty());
}

TEST_F(TrustInADesktop, TellsAtTheDeadlineWhatTheWindowManagerThatCameLacks) {
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_FALSE(trust->request());
    const Manager manager = startManager(tooLittle);
    EXPECT_TRUE(becomes(Lack::windowManagerSupport));
    loop.advance(std::chrono::seconds(10));
    EXPECT_EQ(told(), only(Lack::windowManagerSupport));
}

TEST_F(TrustInADesktop, TellsAtOnceWhatARunningWindowManagerLacks) {
    const Manager manager = startManager(tooLittle);
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(becomes(Lack::windowManagerSupport));
    EXPECT_FALSE(trust->request());
    EXPECT_EQ(told(), only(Lack::windowManagerSupport));
    const QSignalSpy wanted(trust.get(), &X11Trust::guidanceWanted);
    notifications.choose();
    EXPECT_EQ(wanted.count(), 1) << "a click on the message leads on";
    trust.reset();
    notifications.choose();
}

TEST_F(TrustInADesktop, TellsTheUserEachTimeThatItIsAskedAndWaitsOnlyTheFirst) {
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_FALSE(trust->request());
    loop.advance(std::chrono::seconds(10));
    ASSERT_EQ(told().size(), 1U) << "at the launch";
    loop.advance(std::chrono::seconds(60));
    EXPECT_EQ(told().size(), 1U) << "nobody has asked again";
    {
        const Manager manager = startManager(tooLittle);
        EXPECT_TRUE(becomes(Lack::windowManagerSupport));
        EXPECT_FALSE(trust->request());
        EXPECT_EQ(told().size(), 2U) << "what is missing by now";
        EXPECT_EQ(told().back(), X11Trust::explanation(Lack::windowManagerSupport));
        manager->offer(whatIsNeeded);
        EXPECT_TRUE(becomes(Lack::nothing));
        EXPECT_TRUE(trust->request());
        EXPECT_EQ(told().size(), 2U);
    }
    EXPECT_TRUE(becomes(Lack::windowManager));
    EXPECT_FALSE(trust->request());
    EXPECT_EQ(told().size(), 3U) << "at once: the time that a login takes is over";
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(TrustInADesktop, IsNotBelievedOfWhatADeadWindowManagerLeftBehind) {
    startManager().reset();
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(becomes(Lack::windowManager));
    EXPECT_FALSE(trust->isTrusted());
}

TEST_F(TrustInADesktop, ComesWithACheckWindowThatNamesItselfOnlyAfterTheRootDid) {
    ASSERT_NO_FATAL_FAILURE(start());
    const Manager manager = startManager(whatIsNeeded, CheckWindow::bearsNothingYet);
    catchUp();
    EXPECT_EQ(trust->lack(), Lack::windowManager);
    manager->nameWindow();
    EXPECT_TRUE(becomes(Lack::nothing));
}

TEST_F(TrustInADesktop, EndsWithACheckWindowThatTookTheNumberOfTheOneBefore) {
    ASSERT_NO_FATAL_FAILURE(start());
    Manager manager = startManager();
    EXPECT_TRUE(becomes(Lack::nothing));
    manager->makeWindowAnew();
    catchUp();
    EXPECT_TRUE(becomes(Lack::nothing));
    manager.reset();
    EXPECT_TRUE(becomes(Lack::windowManager));
}

TEST_F(TrustInADesktop, NeedsTheVersionOfTheInputExtensionThatTheMonitorsNeed) {
    const Manager manager = startManager();
    for (std::uint16_t minor = 0; minor <= 2; ++minor) {
        inputVersion.minor = minor;
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_EQ(connection->xinput().minorVersion, minor);
        EXPECT_EQ(X11EventMonitors::isSupported(*connection), minor >= 1) << minor;
        EXPECT_TRUE(becomes(minor >= 1 ? Lack::nothing : Lack::inputEvents)) << minor;
    }
}

TEST_F(TrustInADesktop, IsNeverThereInAWaylandSession) {
    const Manager manager = startManager();
    ASSERT_NO_FATAL_FAILURE(start(Session::wayland));
    EXPECT_TRUE(waitUntil([&] { return watch->isRunning(); }));
    EXPECT_EQ(trust->lack(), Lack::x11Session);
    EXPECT_FALSE(trust->request());
    // There is nothing to wait for: the session will not become another one.
    EXPECT_EQ(told(), only(Lack::x11Session));
    EXPECT_EQ(loop.activeTimerCount(), 0U);
}

TEST_F(TrustInADesktop, EndsWithTheServer) {
    const Manager manager = startManager();
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(becomes(Lack::nothing));
    server->kill();
    EXPECT_TRUE(becomes(Lack::connection));
    EXPECT_FALSE(trust->request());
    EXPECT_EQ(told(), only(Lack::connection));
}

TEST(TrustExplanations, HaveASentenceForEverythingThatCanBeMissing) {
    using Lack = X11Trust::Lack;
    EXPECT_TRUE(X11Trust::explanation(Lack::nothing).isEmpty());
    std::vector<QString> seen;
    for (const Lack lack : {Lack::x11Session, Lack::connection, Lack::inputEvents,
                            Lack::windowManager, Lack::windowManagerSupport}) {
        const QString text = X11Trust::explanation(lack);
        EXPECT_TRUE(text.endsWith(u'.')) << text.toStdString();
        EXPECT_EQ(std::find(seen.begin(), seen.end(), text), seen.end()) << text.toStdString();
        seen.push_back(text);
    }
}
