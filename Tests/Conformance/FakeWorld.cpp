// The conformance suite on the fakes that all other tests use.

#include "PlatformWorld.h"

#include <FakePlatform.h>

#include <QDir>

namespace tilewright::testing {

namespace {

class FakeWorld final : public PlatformWorld {
public:
    FakeWorld() {
        fakes().fakeScreens.setScreens({screen_});
        fakes().fakeAccessibility.elementAt = [this](AXPoint point) { return elementAt(point); };
    }

    FakePlatform& platform() override { return desktop_->platform; }
    bool waitUntil(const std::function<bool()>& condition) override {
        for (int turns = 0; turns < 1000 && !condition(); ++turns)
            fakes().fakeMainLoop.advance(std::chrono::milliseconds(1));
        return condition();
    }

    ProcessID openWindow(const WindowFrame& frame) override {
        window_ = fakes().fakeAccessibility.makeWindow("window");
        window_->position = frame.position;
        window_->size = frame.size;
        window_->process = 7;
        application_ = fakes().fakeAccessibility.makeElement("application");
        application_->elements[AXAttribute::focusedWindow] = window_;
        fakes().fakeAccessibility.applications[7] = application_;
        fakes().fakeWorkspace.frontmost = 7;
        fakes().fakeWorkspace.names[7] = QStringLiteral("Editor");
        Q_EMIT fakes().fakeWorkspace.activeWindowChanged();
        return 7;
    }
    void closeWindow() override {
        window_->isGone = true;
        window_.reset();
    }
    WindowFrame windowFrame() const override { return {window_->position, window_->size}; }

    void movePointer(AppKitPoint to) override { fakes().fakePointer.at = to; }
    void holdControl() override { send({EventType::flagsChanged, {ModifierFlag::control}}); }
    void releaseControl() override { send({EventType::flagsChanged, {}}); }
    void pressButton() override {
        send({EventType::leftMouseDown, {}});
        dismissPanel(PanelDismissal::pressOutside);
    }
    void releaseButton() override { send({EventType::leftMouseUp, {}}); }
    void tapEscape() override { dismissPanel(PanelDismissal::escape); }
    void addPanel() override {
        FakeScreen::Values values;
        values.visibleFrame = AppKitRect{0, 0, 1440, 860};
        fakes().fakeScreens.change({makeScreen(values)});
    }
    void splitDisplay() override {
        FakeScreen::Values left;
        left.frame = {0, 0, 720, 900};
        FakeScreen::Values right;
        right.frame = {720, 450, 720, 450};
        right.displayID = 2;
        fakes().fakeScreens.change({makeScreen(left), makeScreen(right)});
    }
    bool showsPanel() const override {
        const FakePanelSurface* panel = desktop_->platform.panel;
        return panel && panel->view && panel->view->isVisible();
    }

    std::optional<AppKitRect> overlayFrame() const override {
        const FakeOverlaySurface::Record& overlay = desktop_->platform.overlay;
        return overlay.isVisible && overlay.screen ? std::optional(overlay.screen->frame())
                                                   : std::nullopt;
    }
    // A note of what was asked for is in nobody's way.
    bool overlayTakesPresses() const override { return false; }
    bool drawsOverlays() const override { return false; }
    bool isThisApplicationInFront() const override {
        return desktop_->platform.fakeWorkspace.activations > 0;
    }

    std::optional<ShownItem> shownItem() override {
        if (!desktop_ || fakes().fakeStatusItem.symbols.empty())
            return std::nullopt;
        const FakeStatusItem& item = fakes().fakeStatusItem;
        return ShownItem{item.accessibleName, item.icon.pixmap(64, 64).toImage()};
    }
    AppKitPoint clickItem() override {
        movePointer({612, 888});
        fakes().fakeStatusItem.click(AppKitRect{600, 876, 24, 24});
        return {612, 888};
    }

    void startEarlierInstance() override {
        fakes().fakeInstanceActivation.answer = InstanceActivation::Claim::another;
    }
    bool isEarlierInstanceAsked() override { return true; }
    void startLaterInstance() override {
        Q_EMIT fakes().fakeInstanceActivation.activationRequested();
    }
    void endPlatform() override { desktop_.reset(); }

    void wishReducedMotion(bool isReduced) override {
        fakes().fakeAppearance.changeReducedMotion(isReduced);
    }
    bool wishDark(bool isDark) override {
        fakes().fakeAppearance.changeDark(isDark);
        return true;
    }
    bool blendsWindows() const override { return desktop_->platform.fakeAppearance.blends; }
    void startBlending() override { fakes().fakeAppearance.blends = true; }

    void setTrust(bool isGranted) override { fakes().fakeAccessibility.changeTrust(isGranted); }
    int heldAssertions() override {
        return static_cast<int>(fakes().fakePowerAssertions.held.size());
    }
    QString home() const override { return QDir::tempPath(); }

private:
    FakePlatform& fakes() { return desktop_->platform; }
    void dismissPanel(PanelDismissal why) {
        if (fakes().panel)
            fakes().panel->dismiss(why);
    }
    void send(const Event& event) {
        fakes().fakeEventMonitors.send(FakeEventMonitors::Kind::global, event);
    }
    [[nodiscard]] std::shared_ptr<FakeElement> elementAt(AXPoint point) const {
        if (!window_)
            return nullptr;
        const AppKitRect area{window_->position.x, window_->position.y, window_->size.width,
                              window_->size.height};
        return area.contains({point.x, point.y}) ? window_ : nullptr;
    }

    std::unique_ptr<FakeDesktop> desktop_ = std::make_unique<FakeDesktop>();
    const ScreenPtr screen_ = makeScreen();
    std::shared_ptr<FakeElement> window_;
    std::shared_ptr<FakeElement> application_;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Fakes, PlatformConformance,
                         ::testing::Values([] { return std::make_unique<FakeWorld>(); }));

} // namespace tilewright::testing
