// The conformance suite on the X11 backend: a real server, a real window manager, a real
// application and real input. Qt runs on the same server: what this program shows is there to be
// seen.

#include "PlatformWorld.h"
#include "SessionHands.h"

#include <BareClient.h>
#include <DesktopSession.h>
#include <ProgramWindows.h>
#include <TestClients.h>
#include <Waiting.h>
#include <X11/X11Connection.h>
#include <X11/X11InstanceActivation.h>
#include <X11/X11Platform.h>

#include <QApplication>
#include <gmock/gmock.h>
#include <unistd.h>

namespace tilewright::testing {

namespace {

/// The desktop of this run. Qt connects to its server before the first test, and to no other.
DesktopSession* desktopOfThisRun = nullptr;

/// Another start of the program, as far as it is about being the one.
struct Instance {
    explicit Instance(const QString& display)
        : connection(X11Connection::open(display))
        , activation(*connection) {
        QObject::connect(&activation, &InstanceActivation::activationRequested, &activation,
                         [this] { ++requests; });
    }

    std::unique_ptr<X11Connection> connection;
    X11InstanceActivation activation;
    int requests = 0;
};

class X11World final : public PlatformWorld {
public:
    X11World() {
        // The first window may well get the number of the one that was active in the last world.
        static_cast<void>(outputOf(QStringLiteral("xprop"),
                                   {QStringLiteral("-root"), QStringLiteral("-remove"),
                                    QStringLiteral("_NET_ACTIVE_WINDOW")},
                                   desktop_.environment()));
        EXPECT_TRUE(desktop_.startWindowManager(WindowManagerKind::openbox));
        platform_ = X11Platform::open();
        if (platform_)
            installation_.emplace(*platform_);
    }
    ~X11World() override {
        X11World::endPlatform();
        desktop_.stopCompositor();
        for (const TestClient& client : clients_) {
            if (client.process)
                client.process->stop();
        }
        desktop_.killWindowManager();
        if (!isSplit_)
            return;
        for (const char* monitor : {"LEFT", "RIGHT"})
            xrandr({QStringLiteral("--delmonitor"), QString::fromLatin1(monitor)});
    }

    [[nodiscard]] bool isOpen() const { return platform_ != nullptr; }

    Platform& platform() override { return *platform_; }
    bool waitUntil(const std::function<bool()>& condition) override {
        return testing::waitUntil(condition);
    }

    ProcessID openWindow(const WindowFrame& frame) override {
        const QRect area(static_cast<int>(frame.position.x), static_cast<int>(frame.position.y),
                         static_cast<int>(frame.size.width), static_cast<int>(frame.size.height));
        const TestClient& client =
            clients_.emplace_back(startClient(desktop_, ClientKind::qt, area));
        static_cast<void>(
            outputOf(QStringLiteral("wmctrl"),
                     {QStringLiteral("-i"), QStringLiteral("-a"), QString::number(client.window)},
                     desktop_.environment()));
        return client.process ? client.process->pid() : 0;
    }
    void closeWindow() override { clients_.back().process->stop(); }
    WindowFrame windowFrame() const override {
        const QRect frame = desktop_.inspector().outerFrame(clients_.back().window);
        return {{double(frame.x()), double(frame.y())},
                {double(frame.width()), double(frame.height())}};
    }

    void movePointer(AppKitPoint to) override {
        const int rows = desktop_.inspector().screenSize().height();
        // The pointer is in the middle of its pixel.
        desktop_.input().move({int(to.x), rows - 1 - int(to.y)});
    }
    void holdControl() override { desktop_.input().pressKey(keysym::control); }
    void releaseControl() override { desktop_.input().releaseKey(keysym::control); }
    void pressButton() override { desktop_.input().press(); }
    void releaseButton() override { desktop_.input().release(); }
    void tapEscape() override { desktop_.input().tapKey(keysym::escape); }
    void addPanel() override {
        const auto width = quint32(desktop_.inspector().screenSize().width());
        panel_ = std::make_unique<BareClient>(
            desktop_.display(), QRect(0, 0, int(width), 40),
            std::vector<quint32>{0, 0, 40, 0, 0, 0, 0, 0, 0, width - 1, 0, 0});
    }
    void splitDisplay() override {
        isSplit_ = true;
        const QSize whole = desktop_.inspector().screenSize();
        const QString size = QStringLiteral("%1/100x%2/100+%3+0");
        const int half = whole.width() / 2;
        xrandr({QStringLiteral("--setmonitor"), QStringLiteral("LEFT"),
                size.arg(half).arg(whole.height()).arg(0), QStringLiteral("screen")});
        xrandr({QStringLiteral("--setmonitor"), QStringLiteral("RIGHT"),
                size.arg(half).arg(whole.height() / 2).arg(half), QStringLiteral("none")});
    }
    bool showsPanel() const override {
        return openPanelFrame(desktop_.inspector(), getpid()).has_value();
    }

    std::optional<AppKitRect> overlayFrame() const override {
        const XInspector& look = desktop_.inspector();
        const auto overlay = overlayWindow(look, getpid());
        if (!overlay || !look.isMapped(*overlay))
            return std::nullopt;
        const QRect frame = look.clientFrame(*overlay);
        if (look.pixel(frame.center()) != overlayColor)
            return std::nullopt;
        const int rows = look.screenSize().height();
        return AppKitRect{double(frame.x()), double(rows - frame.y() - frame.height()),
                          double(frame.width()), double(frame.height())};
    }
    bool overlayTakesPresses() const override {
        const XInspector& look = desktop_.inspector();
        const auto overlay = overlayWindow(look, getpid());
        return overlay && look.toplevelAt(look.clientFrame(*overlay).center()) == *overlay;
    }
    bool drawsOverlays() const override { return true; }
    bool showsOverlayWidgets() const override { return false; }
    bool showsOverlaysWhole() const override { return true; }
    bool isThisApplicationInFront() const override {
        const XInspector& look = desktop_.inspector();
        return look.processID(look.activeWindow()) == quint32(getpid());
    }

    std::optional<ShownItem> shownItem() override { return session_.shownItem(); }
    AppKitPoint clickItem() override {
        const QPoint at(600, 10);
        desktop_.input().move(at);
        session_.clickItem(at);
        // The middle of the pixel.
        return {at.x() + 0.5, desktop_.inspector().screenSize().height() - at.y() - 0.5};
    }

    void startEarlierInstance() override {
        earlier_ = std::make_unique<Instance>(desktop_.display());
        EXPECT_EQ(earlier_->activation.claim(), InstanceActivation::Claim::first);
    }
    bool isEarlierInstanceAsked() override { return earlier_->requests == 1; }
    void startLaterInstance() override {
        Instance later(desktop_.display());
        EXPECT_EQ(later.activation.claim(), InstanceActivation::Claim::another);
    }
    void endPlatform() override {
        installation_.reset();
        platform_.reset();
    }

    void wishReducedMotion(bool isReduced) override { session_.wishReducedMotion(isReduced); }
    bool wishDark(bool isDark) override {
        session_.wishDark(isDark);
        return true;
    }
    bool blendsWindows() const override { return desktop_.inspector().hasCompositor(); }
    void startBlending() override { EXPECT_TRUE(desktop_.startCompositor()); }

    void setTrust(bool isGranted) override {
        if (!isGranted)
            desktop_.killWindowManager();
        else if (!desktop_.startWindowManager(WindowManagerKind::openbox))
            ADD_FAILURE() << "there is no window manager";
    }
    int heldAssertions() override { return session_.heldInhibitions(); }
    QString home() const override { return desktop_.home(); }

private:
    void xrandr(const QStringList& arguments) const {
        static_cast<void>(outputOf(QStringLiteral("xrandr"), arguments, desktop_.environment()));
    }

    DesktopSession& desktop_ = *desktopOfThisRun;
    std::unique_ptr<X11Platform> platform_;
    std::optional<Platform::Installation> installation_;
    SessionHands session_{desktop_.busAddress()};
    std::unique_ptr<Instance> earlier_;
    std::vector<TestClient> clients_;
    std::unique_ptr<BareClient> panel_;
    bool isSplit_ = false;
};

std::unique_ptr<PlatformWorld> makeX11World() {
    auto world = std::make_unique<X11World>();
    return world->isOpen() ? std::move(world) : nullptr;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(X11, PlatformConformance, ::testing::Values(&makeX11World));

} // namespace tilewright::testing

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    // Listing has to work on a machine without a display.
    if (::testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    using namespace tilewright::testing;
    DesktopSession desktop;
    // Qt and the backend find their desktop as a program started in it would.
    const QProcessEnvironment environment = desktop.environment();
    for (const QString& name : environment.keys())
        qputenv(name.toLatin1().constData(), environment.value(name).toLocal8Bit());
    desktopOfThisRun = &desktop;
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
