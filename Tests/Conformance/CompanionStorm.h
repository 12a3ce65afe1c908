#pragma once

#include "CompanionNoise.h"
#include "MockTeller.h"

#include <Platform/Platform.h>
#include <Tilewright/SnapController.h>

#include <Waiting.h>
#include <memory>

namespace tilewright::testing {

/// A companion gone mad, on a real bus, and the core that goes on, its overlay and its panel with
/// it. Whoever derives from this has made both.
class CompanionStorm {
protected:
    CompanionStorm(Platform& platform, MockTeller& teller);
    virtual ~CompanionStorm() = default;

    /// Has it rage and end well, by several seeds.
    void expectToGoOnAfterEach();
    /// Has it tell what makes sense or none in any order, while the user drags windows and opens
    /// and closes the panel.
    void rage(unsigned seed);

    /// What the compositor around it does now and then.
    virtual void disturb(CompanionNoise& noise) = 0;
    /// The compositor says that all is well.
    virtual void calm() = 0;
    /// It introduces itself with that, for good.
    virtual void greet(const QByteArray& hello) = 0;
    virtual void setControl(bool isHeld) = 0;
    [[nodiscard]] virtual bool isOverlayShown() const = 0;
    [[nodiscard]] virtual bool isPanelShown() const = 0;

    const std::unique_ptr<PanelSurface> panel;
    /// How often the overlay was seen to be shown.
    int overlays = 0;

private:
    void goOnDragging();
    void expectAnswers();
    void forget();
    void expectToGoOn();

    MockTeller& teller_;
    int openings_ = 0;
    int dragSteps_ = 0;
};

} // namespace tilewright::testing
