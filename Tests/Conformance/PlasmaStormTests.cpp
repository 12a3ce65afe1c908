// KWin's companion gone mad, the keys told beside it, and KWin not sure whether to have it.

#include "CompanionStorm.h"
#include "FakeCompositor.h"
#include "MockKWin.h"
#include "PrivateBus.h"
#include "SessionEnvironment.h"

#include <Plasma/PlasmaPlatform.h>

#include <QApplication>
#include <QWidget>
#include <optional>

namespace tilewright::testing {
namespace {

// As KWin numbers them.
constexpr std::uint32_t firstKey = 3;
constexpr std::uint32_t controlKey = 4;
constexpr std::uint32_t released = 0;
constexpr std::uint32_t pressed = 3;

/// The core on Plasma's backend, and a KWin with one display whose companion has greeted.
struct PlasmaSnapTest : ::testing::Test {
    PlasmaSnapTest() {
        FakeOutput output;
        output.name = QStringLiteral("Virtual-7");
        output.frame = {0, 0, 1920, 1080};
        output.mode = output.frame.size();
        compositor.addOutput(output);
        kwin.onCompanion = [this] { kwin.greet(helloText(displayText(), windowText(3))); };
        platform.emplace();
        installation.emplace(*platform);
        EXPECT_TRUE(
            waitUntil([&] { return kwin.isAnswered() && platform->accessibility.isTrusted(); }));
        SnapController::shared().start();
    }

    PrivateBus bus;
    SessionEnvironment environment{bus.address()};
    FakeCompositor compositor{environment.runtimeFolder(), compositorsSocket};
    MockKWin kwin{bus.connect()};
    std::optional<PlasmaPlatform> platform;
    std::optional<Platform::Installation> installation;
};

class PlasmaStorm : public PlasmaSnapTest, protected CompanionStorm {
protected:
    PlasmaStorm()
        : CompanionStorm(*platform, kwin) {
        kwin.onCommand = [this](const QJsonObject& command) {
            if (command[QStringLiteral("c")] == QStringLiteral("panel") &&
                command[QStringLiteral("shown")].toBool())
                kwin.call("PanelAwaited", "{}");
        };
    }
    void disturb(CompanionNoise& noise) override {
        if (noise.oneIn(8))
            compositor.setKey(firstKey + std::uint32_t(noise.upTo(4)),
                              noise.oneIn(3) ? released : pressed);
        if (noise.oneIn(200)) {
            kwin.takesScripts = noise.oneIn(2);
            kwin.restartCompositing();
        }
        overlays += isOverlayShown() ? 1 : 0;
    }
    void calm() override {
        for (int key = 0; key < 4; ++key)
            compositor.setKey(firstKey + std::uint32_t(key), released);
        kwin.takesScripts = true;
        kwin.restartCompositing();
        EXPECT_TRUE(waitUntil([&] { return kwin.hasCompanion() && kwin.isAnswered(); }));
    }
    void greet(const QByteArray& hello) override { kwin.greet(hello); }
    void leave() override { kwin.leave(); }
    void setControl(bool isHeld) override {
        compositor.setKey(controlKey, isHeld ? pressed : released);
    }
    [[nodiscard]] bool isOverlayShown() const override {
        const std::vector<FakeSurface*> layers = compositor.layers();
        return std::any_of(layers.begin(), layers.end(),
                           [](const FakeSurface* layer) { return layer->isSeen(); });
    }
    [[nodiscard]] bool isPanelShown() const override {
        if (!kwin.panel)
            return false;
        const QString title = (*kwin.panel)[QStringLiteral("title")].toString();
        const QWidgetList all = QApplication::topLevelWidgets();
        return std::any_of(all.begin(), all.end(), [&](const QWidget* widget) {
            return widget->isVisible() && widget->windowTitle() == title;
        });
    }
};

} // namespace

TEST_F(PlasmaStorm, LeavesNothingShownOrHeldWhateverIsToldInWhateverOrder) {
    expectToGoOnAfterEach();
    expectToEndWell();
    EXPECT_TRUE(waitUntil([this] { return !isOverlayShown(); }));
}

} // namespace tilewright::testing
