// The conformance suite on the Plasma backend: a real message bus, and a stand-in for KWin with the
// program's companion inside, which is a Wayland compositor as well. Where KWin puts a window runs
// in a real one only: of that this shows what it is asked for.

#include "CompanionWorld.h"
#include "FakeCompositor.h"
#include "MockKWin.h"

#include <Plasma/PlasmaPlatform.h>

#include <vector>

namespace tilewright::testing {

namespace {

// As KWin numbers them.
constexpr std::uint32_t controlKey = 4;
constexpr std::uint32_t released = 0;
constexpr std::uint32_t pressed = 3;

class PlasmaWorld final : public CompanionWorld {
public:
    PlasmaWorld() {
        FakeOutput output;
        output.name = QStringLiteral("Virtual-7");
        output.frame = {0, 0, displayWidth, displayHeight};
        output.mode = output.frame.size();
        compositor_.addOutput(output);
        kwin_.onCompanion = [this] { greet(); };
        begin(kwin_, std::make_unique<PlasmaPlatform>());
        EXPECT_TRUE(waitUntil([this] { return kwin_.isAnswered() && isTrusted(); }));
        // Every session of Plasma has somebody who keeps the display from being blanked.
        EXPECT_EQ(session_.heldInhibitions(), 0);
    }
    ~PlasmaWorld() override { PlasmaWorld::endPlatform(); }

    std::optional<AppKitRect> overlayFrame() const override {
        const FakeSurface* surface = compositor_.layer();
        if (!surface || !surface->isSeen())
            return std::nullopt;
        const QRect frame = compositor_.output(surface->outputName)->frame;
        EXPECT_EQ(surface->destination, frame.size());
        EXPECT_TRUE(surface->letsInputThrough);
        return AppKitRect{double(frame.x()), double(displayHeight - frame.y() - frame.height()),
                          double(frame.width()), double(frame.height())};
    }
    bool drawsOverlays() const override { return true; }
    bool showsOverlayWidgets() const override { return false; }

    std::optional<ShownItem> shownItem() override { return session_.shownItem(); }
    AppKitPoint clickItem() override {
        constexpr QPoint at(600, 10);
        session_.clickItem(at);
        // The middle of the unit.
        return {at.x() + 0.5, displayHeight - at.y() - 0.5};
    }

    /// KWin begins anew to paint, and so gets the companion handed again, which it takes or not.
    void restartCompositing(bool takesScripts) {
        kwin_.takesScripts = takesScripts;
        kwin_.restartCompositing();
    }

    // KWin goes, and another one comes.
    void setTrust(bool isGranted) override {
        if (isGranted)
            kwin_.come();
        else
            kwin_.leave();
    }

protected:
    // They are told over the Wayland connection alone.
    void tellKeys(int keys) override {
        compositor_.setKey(controlKey, keys == control ? pressed : released);
    }

private:
    void greet() {
        QByteArray text = hello();
        text.chop(1);
        kwin_.greet(text + R"(,"tellsKeys":false})");
    }

    FakeCompositor compositor_{environment_.runtimeFolder(), compositorsSocket};
    MockKWin kwin_{bus_.connect()};
};

} // namespace

TEST(PlasmaPlatform, IsTrustedNoMoreAndForgetsTheDragOnceKWinRefusesTheCompanion) {
    PlasmaWorld world;
    static_cast<void>(world.openWindow({{100, 120}, {400, 300}}));
    std::vector<Event> seen;
    EventMonitors& monitors = world.platform().eventMonitors;
    const auto monitor =
        monitors.addGlobalMonitor({EventType::flagsChanged, EventType::leftMouseUp},
                                  [&](const Event& event) { seen.push_back(event); });
    ASSERT_TRUE(monitor);
    world.holdControl();
    ASSERT_TRUE(waitUntil([&] { return !seen.empty(); }));
    world.restartCompositing(false);
    EXPECT_TRUE(waitUntil([&] { return !world.isTrusted(); }));
    EXPECT_EQ(seen.back().type, EventType::leftMouseUp);
    EXPECT_FALSE(seen.back().modifierFlags.contains(ModifierFlag::control)) << "it is no drop";
    world.restartCompositing(true);
    EXPECT_TRUE(waitUntil([&] { return world.isTrusted(); }));
    monitors.removeMonitor(*monitor);
}

INSTANTIATE_TEST_SUITE_P(Plasma, PlatformConformance,
                         ::testing::Values([] { return std::make_unique<PlasmaWorld>(); }));

} // namespace tilewright::testing
