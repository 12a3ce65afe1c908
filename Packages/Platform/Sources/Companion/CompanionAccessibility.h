#pragma once

#include "CompanionOutbox.h"
#include "CompanionScreens.h"

#include <Platform/Accessibility.h>
#include <Platform/MainLoop.h>
#include <Platform/WholeFrames.h>

#include <functional>
#include <memory>

namespace tilewright {

/// Other applications' windows by way of a companion. Trusted is: one is there, and the keys are
/// told. Of windows those are known that had the focus or were dragged; while the user drags one,
/// it is the element at every point. The writes made to a window within one turn are one frame.
/// Main thread only.
class CompanionAccessibility final : public Accessibility {
    Q_OBJECT

public:
    /// How long the request for trust waits for a companion, at login for one.
    static constexpr std::chrono::seconds loginPatience{10};

    /// `tell` says to the user what is missing. All others have to outlive this.
    CompanionAccessibility(CompanionState& state, const CompanionScreens& screens,
                           CompanionOutbox& outbox, MainLoop& loop, std::function<void()> tell);
    ~CompanionAccessibility() override;

    [[nodiscard]] bool isTrusted() const override {
        return state_.isConnected() && state_.hasKeys();
    }
    /// Where no companion is there yet, it is waited for first, once in a run; what is asked
    /// meanwhile waits with it.
    bool requestTrust() override;
    [[nodiscard]] AccessibilityElement systemWideElement() const override;
    [[nodiscard]] AccessibilityElement applicationElement(ProcessID process) const override;
    [[nodiscard]] AXResult<AccessibilityElement> elementAtPosition(AXPoint point) const override;
    [[nodiscard]] std::unique_ptr<AccessibilityValue> makeValue(AXPoint position) const override;
    [[nodiscard]] std::unique_ptr<AccessibilityValue> makeValue(AXSize size) const override;

private:
    struct Context;
    class WindowElement;
    class ApplicationElement;

    void trustMayHaveChanged();
    void finish(CompanionWindowID window, const WrittenFrame& frame);

    CompanionState& state_;
    const CompanionScreens& screens_;
    CompanionOutbox& outbox_;
    MainLoop& loop_;
    const std::function<void()> tell_;
    WholeFrames<CompanionWindowID> frames_;
    /// What elements need; they may outlive this.
    std::shared_ptr<Context> context_;
    bool wasTrusted_ = false;
    bool hasWaited_ = false;
    ScopedTimer wait_;
};

} // namespace tilewright
