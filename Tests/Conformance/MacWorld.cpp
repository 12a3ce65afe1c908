// The conformance suite on the macOS backend, over the fakes of what it calls. Where the backend is
// Objective-C alone (pointer, defaults, application support), what runs here stands in
// for it: of those interfaces this shows no more than that the suite and the stand-ins agree.

#include "MacTestPlatform.h"
#include "PlatformWorld.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace tilewright::testing {

namespace {

class MacWorld final : public PlatformWorld {
public:
    MacWorld() {
        desktop_.appKit.screens = {makeFacts({0, 0, 1440, 900}, 1)};
        desktop_.appKit.mainScreen = 0;
        desktop_.system.displayUUIDs[1] = QStringLiteral("37D8832A-2D66-02CA-B9F7-8F30A301B230");
        desktop_.system.elementAt = [this](AXPoint point) { return elementAt(point); };
    }

    MacTestPlatform& platform() override { return desktop_.platform; }
    bool waitUntil(const std::function<bool()>& condition) override {
        for (int turns = 0; turns < 1000 && !condition(); ++turns)
            desktop_.platform.loop().advance(std::chrono::milliseconds(1));
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
        desktop_.system.applications[7] = application;
        desktop_.appKit.frontmost = 7;
        desktop_.appKit.names[7] = QStringLiteral("Editor");
        desktop_.appKit.announce(appkit::Notification::applicationActivated);
        return 7;
    }
    void closeWindow() override {
        window_->isGone = true;
        window_.reset();
    }
    WindowFrame windowFrame() const override { return {window_->position, window_->size}; }

    void movePointer(AppKitPoint to) override { desktop_.appKit.mouse = to; }
    void holdControl() override { send({EventType::flagsChanged, {ModifierFlag::control}}); }
    void releaseControl() override { send({EventType::flagsChanged, {}}); }
    void pressButton() override { send({EventType::leftMouseDown, {}}); }
    void releaseButton() override { send({EventType::leftMouseUp, {}}); }
    void tapEscape() override {
        // A popup has the keys of this application.
        QWidget* receiver = QApplication::activePopupWidget();
        if (!receiver)
            return;
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, {});
        QCoreApplication::sendEvent(receiver, &press);
    }
    void addPanel() override {
        desktop_.appKit.screens[0].visibleFrame.height -= 40;
        desktop_.appKit.announce(appkit::Notification::screenParametersChanged);
    }
    bool showsPanel() const override { return QApplication::activePopupWidget() != nullptr; }

private:
    void send(const Event& event) { desktop_.appKit.send(appkit::MonitorKind::global, event); }
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

    MacDesktop desktop_;
    std::shared_ptr<MacNode> window_;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(MacOS, PlatformConformance,
                         ::testing::Values([] { return std::make_unique<MacWorld>(); }));

} // namespace tilewright::testing
