// The conformance suite on the GNOME backend: a real message bus, and a stand-in for the shell with
// the program's companion inside. What the shell draws, and where it puts a window, runs in a real
// shell only: of those this shows what it is asked for.

#include "CompanionWorld.h"
#include "MockCompanion.h"

#include <Gnome/GnomePlatform.h>

namespace tilewright::testing {

namespace {

constexpr int active = 1;
constexpr int inactive = 2;

class GnomeWorld final : public CompanionWorld {
public:
    GnomeWorld() {
        shell_.extensionState = active;
        begin(shell_, std::make_unique<GnomePlatform>());
        EXPECT_TRUE(waitUntil([this] { return shell_.seesProgram(); }));
        shell_.greet(hello());
        EXPECT_TRUE(waitUntil([this] { return shell_.isAnswered() && isTrusted(); }));
        // Every session of GNOME has somebody who keeps the display from being blanked.
        EXPECT_EQ(session_.heldInhibitions(), 0);
    }
    ~GnomeWorld() override { GnomeWorld::endPlatform(); }

    std::optional<AppKitRect> overlayFrame() const override {
        if (!shell_.overlay)
            return std::nullopt;
        const QJsonArray area = (*shell_.overlay)[QStringLiteral("area")].toArray();
        return AppKitRect{area[0].toDouble(),
                          displayHeight - area[1].toDouble() - area[3].toDouble(),
                          area[2].toDouble(), area[3].toDouble()};
    }
    bool drawsOverlays() const override { return false; }

    std::optional<ShownItem> shownItem() override {
        // With the program's end the companion takes its item away.
        if (!shell_.item || !shell_.seesProgram())
            return std::nullopt;
        return ShownItem{(*shell_.item)[QStringLiteral("name")].toString(), QImage()};
    }
    bool showsEverySymbol() const override { return false; }
    AppKitPoint clickItem() override {
        shell_.call("ItemClicked", R"({"item":[600,0,24,24],"pointer":[610,10]})");
        return {612, displayHeight - 12};
    }

    // The user turns the extension off and on.
    void setTrust(bool isGranted) override {
        shell_.extensionState = isGranted ? active : inactive;
        shell_.announceExtension();
        if (isGranted)
            shell_.greet(hello());
    }

private:
    MockCompanion shell_{bus_.connect()};
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Gnome, PlatformConformance,
                         ::testing::Values([] { return std::make_unique<GnomeWorld>(); }));

} // namespace tilewright::testing
