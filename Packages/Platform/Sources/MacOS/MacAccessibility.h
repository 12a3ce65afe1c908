#pragma once

#include "CFOwner.h"

#include <ApplicationServices/ApplicationServices.h>
#include <Platform/Accessibility.h>
#include <Platform/MainLoop.h>

#include <memory>

namespace tilewright {

namespace appkit {
class Observation;
}

/// The accessibility interface of macOS. Calls block for as long as the application asked takes to
/// answer, as the platform does. Main thread only; the loop has to outlive it.
class MacAccessibility final : public Accessibility {
    Q_OBJECT

public:
    explicit MacAccessibility(MainLoop& loop);
    ~MacAccessibility() override;

    [[nodiscard]] bool isTrusted() const override;
    bool requestTrust() override;
    [[nodiscard]] AccessibilityElement systemWideElement() const override;
    [[nodiscard]] AccessibilityElement applicationElement(ProcessID process) const override;
    [[nodiscard]] AXResult<AccessibilityElement> elementAtPosition(AXPoint point) const override;
    [[nodiscard]] std::unique_ptr<AccessibilityValue> makeValue(AXPoint position) const override;
    [[nodiscard]] std::unique_ptr<AccessibilityValue> makeValue(AXSize size) const override;

private:
    /// Looks, soon and a few times more, whether the permission has changed.
    void lookForPermission(std::size_t look);

    MainLoop& loop_;
    bool wasTrusted_;
    ScopedTimer nextLook_;
    std::unique_ptr<appkit::Observation> observation_;
};

} // namespace tilewright
