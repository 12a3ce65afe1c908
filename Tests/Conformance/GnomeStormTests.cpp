// GNOME's companion gone mad.

#include "CompanionStorm.h"
#include "GnomeSnapTest.h"

namespace tilewright::testing {
namespace {

class GnomeStorm : public GnomeSnapTest, protected CompanionStorm {
protected:
    GnomeStorm()
        : CompanionStorm(*platform, shell) {
        shell.onCommand = [this](const QJsonObject& command) {
            overlays += command[QStringLiteral("c")] == QStringLiteral("overlay") ? 1 : 0;
        };
    }
    void disturb(CompanionNoise& noise) override {
        if (!noise.oneIn(200))
            return;
        shell.extensionState = noise.oneIn(2) ? 1 : 2;
        shell.announceExtension();
    }
    void calm() override {
        shell.extensionState = 1;
        shell.announceExtension();
    }
    void greet(const QByteArray& hello) override { shell.greet(hello); }
    void leave() override { shell.leave(); }
    // It tells them itself.
    void setControl(bool /*isHeld*/) override {}
    [[nodiscard]] bool isOverlayShown() const override { return shell.overlay.has_value(); }
    [[nodiscard]] bool isPanelShown() const override {
        return shell.panel && (*shell.panel)[QStringLiteral("shown")].toBool();
    }
};

} // namespace

TEST_F(GnomeStorm, LeavesNothingShownOrHeldWhateverIsToldInWhateverOrder) {
    expectToGoOnAfterEach();
    expectToEndWell();
}

} // namespace tilewright::testing
