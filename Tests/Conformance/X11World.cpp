// The conformance suite on the X11 backend: a real server, a real window manager, a real
// application and real input.

#include "PlatformWorld.h"

#include <BareClient.h>
#include <DesktopSession.h>
#include <TestClients.h>
#include <Waiting.h>
#include <X11/X11Platform.h>

namespace tilewright::testing {

namespace {

class X11World final : public PlatformWorld {
public:
    X11World() {
        EXPECT_TRUE(desktop_.startWindowManager(WindowManagerKind::openbox));
        // The backend finds its desktop as a program started in it would.
        const QProcessEnvironment environment = desktop_.environment();
        for (const QString& name : environment.keys())
            qputenv(name.toLatin1().constData(), environment.value(name).toLocal8Bit());
        platform_ = X11Platform::open();
        if (platform_)
            installation_.emplace(*platform_);
    }
    ~X11World() override {
        installation_.reset();
        platform_.reset();
    }

    [[nodiscard]] bool isOpen() const { return platform_ != nullptr; }

    Platform& platform() override { return *platform_; }
    bool waitUntil(const std::function<bool()>& condition) override {
        return testing::waitUntil(condition);
    }

    ProcessID openWindow(const WindowFrame& frame) override {
        const QRect area(static_cast<int>(frame.position.x), static_cast<int>(frame.position.y),
                         static_cast<int>(frame.size.width), static_cast<int>(frame.size.height));
        client_ = startClient(desktop_, ClientKind::qt, area);
        static_cast<void>(
            outputOf(QStringLiteral("wmctrl"),
                     {QStringLiteral("-i"), QStringLiteral("-a"), QString::number(client_.window)},
                     desktop_.environment()));
        return client_.process ? client_.process->pid() : 0;
    }
    void closeWindow() override { client_.process->stop(); }
    WindowFrame windowFrame() const override {
        const QRect frame = desktop_.inspector().outerFrame(client_.window);
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
    void addPanel() override {
        const auto width = quint32(desktop_.inspector().screenSize().width());
        panel_ = std::make_unique<BareClient>(
            desktop_.display(), QRect(0, 0, int(width), 40),
            std::vector<quint32>{0, 0, 40, 0, 0, 0, 0, 0, 0, width - 1, 0, 0});
    }

private:
    mutable DesktopSession desktop_;
    std::unique_ptr<X11Platform> platform_;
    std::optional<Platform::Installation> installation_;
    TestClient client_;
    std::unique_ptr<BareClient> panel_;
};

std::unique_ptr<PlatformWorld> makeX11World() {
    auto world = std::make_unique<X11World>();
    return world->isOpen() ? std::move(world) : nullptr;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(X11, PlatformConformance, ::testing::Values(&makeX11World));

} // namespace tilewright::testing
