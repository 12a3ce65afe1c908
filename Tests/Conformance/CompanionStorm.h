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

    /// Has it rage, by several seeds, and the core go on after each.
    void expectToGoOnAfterEach();
    /// Has the compositor leave in the midst of it, and nothing be held any longer.
    void expectToEndWell();

    /// What the compositor around it does now and then.
    virtual void disturb(CompanionNoise& noise) = 0;
    /// The compositor says that all is well.
    virtual void calm() = 0;
    /// It introduces itself with that, for good.
    virtual void greet(const QByteArray& hello) = 0;
    /// The compositor's end on the bus, and the companion's with it.
    virtual void leave() = 0;
    virtual void setControl(bool isHeld) = 0;
    [[nodiscard]] virtual bool isOverlayShown() const = 0;
    [[nodiscard]] virtual bool isPanelShown() const = 0;

    const std::unique_ptr<PanelSurface> panel;
    /// How often the overlay was seen to be shown.
    int overlays = 0;

private:
    /// Has it tell what makes sense or none in any order, while the user drags windows and opens
    /// and closes the panel.
    void rage(unsigned seed);
    void goOnDragging();
    void expectAnswers();
    void forget();
    void expectToGoOn();

    Platform& platform_;
    MockTeller& teller_;
    int openings_ = 0;
    int dragSteps_ = 0;
};

} // namespace tilewright::testing
