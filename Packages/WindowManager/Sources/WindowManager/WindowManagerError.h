#pragma once

#include <Platform/Accessibility.h>

#include <QString>
#include <exception>
#include <variant>

namespace tilewright {

/// Why a window could not be placed. The cases, in their order, are the alternatives of `Case`.
class WindowManagerError : public std::exception {
public:
    /// Setting the frame failed.
    struct AXSetFailed {
        /// Of setting the position.
        AXError position;
        /// Of the second setting of the size.
        AXError size;
        /// Names the window for diagnosis.
        QString info;
        friend bool operator==(const AXSetFailed&, const AXSetFailed&) = default;
    };
    /// This process is not trusted for accessibility.
    struct AccessibilityDenied {
        friend bool operator==(const AccessibilityDenied&, const AccessibilityDenied&) = default;
    };
    /// No frontmost application exists.
    struct NoFrontmostApp {
        friend bool operator==(const NoFrontmostApp&, const NoFrontmostApp&) = default;
    };
    /// The frontmost application has no focused window.
    struct NoFocusedWindow {
        friend bool operator==(const NoFocusedWindow&, const NoFocusedWindow&) = default;
    };
    /// A position or size value could not be created.
    struct AXValueCreationFailed {
        friend bool operator==(const AXValueCreationFailed&,
                               const AXValueCreationFailed&) = default;
    };
    /// No screen can be found to snap on.
    struct NoScreen {
        friend bool operator==(const NoScreen&, const NoScreen&) = default;
    };
    using Case = std::variant<AXSetFailed, AccessibilityDenied, NoFrontmostApp, NoFocusedWindow,
                              AXValueCreationFailed, NoScreen>;

    static WindowManagerError axSetFailed(AXError position, AXError size, QString info) {
        return WindowManagerError(AXSetFailed{position, size, std::move(info)});
    }
    static WindowManagerError accessibilityDenied() {
        return WindowManagerError(AccessibilityDenied{});
    }
    static WindowManagerError noFrontmostApp() { return WindowManagerError(NoFrontmostApp{}); }
    static WindowManagerError noFocusedWindow() { return WindowManagerError(NoFocusedWindow{}); }
    static WindowManagerError axValueCreationFailed() {
        return WindowManagerError(AXValueCreationFailed{});
    }
    static WindowManagerError noScreen() { return WindowManagerError(NoScreen{}); }

    [[nodiscard]] const Case& kind() const { return case_; }
    template<class C>
    [[nodiscard]] bool is() const {
        return std::holds_alternative<C>(case_);
    }

    friend bool operator==(const WindowManagerError& a, const WindowManagerError& b) {
        return a.case_ == b.case_;
    }

private:
    explicit WindowManagerError(Case kind)
        : case_(std::move(kind)) {}

    Case case_;
};

} // namespace tilewright
