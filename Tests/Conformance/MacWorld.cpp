// The conformance suite on the macOS backend, over the fakes of what it calls. Where the backend is
// Objective-C alone (pointer, defaults, application support), what runs here stands in
// for it: of those interfaces this shows no more than that the suite and the stand-ins agree.

#include "MacTestPlatform.h"
#include "PlatformWorld.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <unistd.h>

namespace tilewright::testing {

namespace {

class MacWorld final : public PlatformWorld {
public:
    MacWorld() {
        appKit_.screens = {makeFacts({0, 0, 1440, 900}, 1)};
        appKit_.mainScreen = 0;
        system_.displayUUIDs[1] = QStringLiteral("37D8832A-2D66-02CA-B9F7-8F30A301B230");
        system_.elementAt = [this](AXPoint point) { return elementAt(point); };
        platform_ = std::make_unique<MacTestPlatform>();
        installation_.emplace(*platform_);
    }

    MacTestPlatform& platform() override { return *platform_; }
    bool waitUntil(const std::function<bool()>& condition) override {
        for (int turns = 0; turns < 1000 && !condition(); ++turns)
            platform_->loop().advance(std::chrono::milliseconds(1));
        return condition();
    }

    ProcessID openWindow(const WindowFrame& frame) override {
        window_ = FakeMacSystem::makeWindow("window");
        window_->position = frame.position;
        window_->size = frame.size;
        window_->process = 7;
        const auto application = FakeMacSystem::makeElement("application");
        application->attributes["AXFocusedWindow"] = window_;
        application->attributes["AXEnhancedUserInterface"] = true;
        system_.applications[7] = application;
        appKit_.frontmost = 7;
        appKit_.names[7] = QStringLiteral("Editor");
        appKit_.announce(appkit::Notification::applicationActivated);
        return 7;
    }
    void closeWindow() override {
        window_->isGone = true;
        window_.reset();
    }
    WindowFrame windowFrame() const override { return {window_->position, window_->size}; }

    void movePointer(AppKitPoint to) override { appKit_.mouse = to; }
    void holdControl() override { setModifiers({ModifierFlag::control}); }
    void releaseControl() override { setModifiers({}); }
    void pressButton() override { send({EventType::leftMouseDown, held_}); }
    void releaseButton() override { send({EventType::leftMouseUp, held_}); }
    void tapEscape() override {
        QWidget* receiver = appKit_.keyView();
        if (!receiver)
            return;
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, {});
        QCoreApplication::sendEvent(receiver, &press);
    }
    void addPanel() override {
        appKit_.screens[0].visibleFrame.height -= 40;
        appKit_.announce(appkit::Notification::screenParametersChanged);
    }
    void splitDisplay() override {
        appKit_.screens = {makeFacts({0, 0, 720, 900}, 1), makeFacts({720, 450, 720, 450}, 2)};
        appKit_.announce(appkit::Notification::screenParametersChanged);
    }
    bool showsPanel() const override { return appKit_.keyView() != nullptr; }

    std::optional<AppKitRect> overlayFrame() const override {
        if (appKit_.windows.empty() || !appKit_.windows.back()->isShown ||
            appKit_.windows.back()->properties.isKeyPanel)
            return std::nullopt;
        // An empty window shows nothing.
        EXPECT_TRUE(appKit_.windows.back()->content);
        return appKit_.windows.back()->frame;
    }
    bool overlayTakesPresses() const override {
        return !appKit_.windows.back()->properties.ignoresMouseEvents;
    }
    bool drawsOverlays() const override { return true; }
    bool isThisApplicationInFront() const override { return appKit_.activations > 0; }

    std::optional<ShownItem> shownItem() override {
        if (!appKit_.statusItem)
            return std::nullopt;
        ShownItem shown;
        shown.name = appKit_.statusItem->accessibleName;
        if (!appKit_.statusItem->images.empty())
            shown.picture = QImage::fromData(appKit_.statusItem->images.back(), "PNG");
        return shown;
    }
    AppKitPoint clickItem() override {
        movePointer({612, 888});
        appKit_.statusItem->frame = AppKitRect{600, 876, 24, 24};
        appKit_.statusItem->clicked();
        return {612, 888};
    }

    void startEarlierInstance() override {
        appKit_.instances = {{getpid(), 20}, {getpid() + 1, 10}};
    }
    bool isEarlierInstanceAsked() override { return appKit_.panelRequests == 1; }
    void startLaterInstance() override { appKit_.announce(appkit::Notification::panelRequested); }
    void endPlatform() override {
        installation_.reset();
        platform_.reset();
    }

    void wishReducedMotion(bool isReduced) override {
        appKit_.reducesMotion = isReduced;
        appKit_.announce(appkit::Notification::displayOptionsChanged);
    }
    // Qt follows the system's colours by itself.
    bool wishDark(bool) override { return false; }
    // This system has blended windows from its beginning.
    bool blendsWindows() const override { return true; }
    void startBlending() override {}

    void setTrust(bool isGranted) override {
        system_.isTrusted = isGranted;
        appKit_.announce(appkit::Notification::accessibilityPermissionChanged);
    }
    int heldAssertions() override { return static_cast<int>(system_.assertions.size()); }
    QString home() const override { return appKit_.applicationSupport.path(); }

private:
    void setModifiers(ModifierFlags flags) {
        held_ = flags;
        send({EventType::flagsChanged, flags});
    }
    void send(const Event& event) { appKit_.send(appkit::MonitorKind::global, event); }
    /// A button in the window, as applications have them, or nothing.
    [[nodiscard]] std::shared_ptr<MacNode> elementAt(AXPoint point) const {
        if (!window_)
            return nullptr;
        const AppKitRect area{window_->position.x, window_->position.y, window_->size.width,
                              window_->size.height};
        if (!area.contains({point.x, point.y}))
            return nullptr;
        auto button = FakeMacSystem::makeElement("button");
        button->attributes["AXRole"] = QStringLiteral("AXButton");
        button->attributes["AXParent"] = window_;
        return button;
    }

    FakeMacSystem system_;
    FakeAppKit appKit_;
    std::unique_ptr<MacTestPlatform> platform_;
    std::optional<Platform::Installation> installation_;
    std::shared_ptr<MacNode> window_;
    ModifierFlags held_;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(MacOS, PlatformConformance,
                         ::testing::Values([] { return std::make_unique<MacWorld>(); }));

} // namespace tilewright::testing
