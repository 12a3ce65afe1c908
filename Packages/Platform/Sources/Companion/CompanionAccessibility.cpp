#include "CompanionAccessibility.h"

#include <cmath>
#include <utility>

namespace tilewright {

namespace {

/// A position or size on its way to an element of this backend.
class Value final : public AccessibilityValue {
public:
    explicit Value(AXPoint value)
        : position(value) {}
    explicit Value(AXSize value)
        : size(value) {}

    const std::optional<AXPoint> position;
    const std::optional<AXSize> size;
};

} // namespace

/// The parts of the interface that its elements use.
struct CompanionAccessibility::Context {
    CompanionState& state;
    WholeFrames<CompanionWindowID>& frames;
};

/// A window of the session; stands for whatever is in it.
class CompanionAccessibility::WindowElement final : public AccessibilityElement::Implementation {
public:
    WindowElement(std::weak_ptr<Context> context, CompanionWindowID window)
        : context_(std::move(context))
        , window_(window) {}

    [[nodiscard]] static AccessibilityElement make(const std::weak_ptr<Context>& context,
                                                   CompanionWindowID window) {
        return AccessibilityElement(std::make_shared<WindowElement>(context, window));
    }

    [[nodiscard]] AXResult<QString> string(AXAttribute attribute) const override {
        const bool isRole = attribute == AXAttribute::role;
        if (!isRole && attribute != AXAttribute::subrole)
            return {AXError::attributeUnsupported, {}};
        if (!window())
            return {AXError::invalidUIElement, {}};
        return {AXError::success,
                isRole ? QString::fromLatin1(axWindowRole) : QStringLiteral("AXStandardWindow")};
    }
    [[nodiscard]] AXResult<AccessibilityElement> element(AXAttribute attribute) const override {
        if (attribute != AXAttribute::window)
            return {AXError::attributeUnsupported, {}};
        if (!window())
            return {AXError::invalidUIElement, {}};
        return {AXError::success, make(context_, window_)};
    }
    AXError setValue(AXAttribute attribute, const AccessibilityValue& value) const override {
        const auto context = context_.lock();
        if (!context)
            return AXError::invalidUIElement;
        const auto* own = dynamic_cast<const Value*>(&value);
        if (!own)
            return AXError::illegalArgument;
        if (attribute == AXAttribute::position)
            return own->position ? context->frames.setPosition(window_, *own->position)
                                 : AXError::illegalArgument;
        if (attribute == AXAttribute::size)
            return own->size ? context->frames.setSize(window_, *own->size)
                             : AXError::illegalArgument;
        return AXError::attributeUnsupported;
    }
    AXError processID(ProcessID& id) const override {
        const auto known = window();
        if (!known)
            return AXError::invalidUIElement;
        if (known->process == 0)
            return AXError::noValue;
        id = known->process;
        return AXError::success;
    }
    [[nodiscard]] bool isSameElement(const Implementation& other) const override {
        const auto* window = dynamic_cast<const WindowElement*>(&other);
        return window && window->window_ == window_;
    }

private:
    [[nodiscard]] std::optional<CompanionWindow> window() const {
        const auto context = context_.lock();
        return context ? context->state.window(window_) : std::nullopt;
    }

    const std::weak_ptr<Context> context_;
    const CompanionWindowID window_;
};

/// The whole desktop, or one application of it: the way to the focused window.
class CompanionAccessibility::ApplicationElement final
    : public AccessibilityElement::Implementation {
public:
    /// Without a process: the whole desktop.
    ApplicationElement(std::weak_ptr<Context> context, std::optional<ProcessID> process)
        : context_(std::move(context))
        , process_(process) {}

    [[nodiscard]] AXResult<QString> string(AXAttribute attribute) const override {
        if (attribute != AXAttribute::role)
            return {AXError::attributeUnsupported, {}};
        return {AXError::success,
                process_ ? QStringLiteral("AXApplication") : QStringLiteral("AXSystemWide")};
    }
    [[nodiscard]] AXResult<AccessibilityElement> element(AXAttribute attribute) const override {
        const auto context = context_.lock();
        if (!context)
            return {AXError::invalidUIElement, {}};
        if (attribute != AXAttribute::focusedUIElement &&
            !(process_ && attribute == AXAttribute::focusedWindow))
            return {AXError::attributeUnsupported, {}};
        const auto window =
            process_ ? context->state.lastActiveOf(*process_) : context->state.lastActive();
        if (!window)
            return {AXError::noValue, {}};
        return {AXError::success, WindowElement::make(context_, window->id)};
    }
    AXError setValue(AXAttribute /*attribute*/,
                     const AccessibilityValue& /*value*/) const override {
        return AXError::attributeUnsupported;
    }
    AXError processID(ProcessID& id) const override {
        if (!process_)
            return AXError::noValue;
        id = *process_;
        return AXError::success;
    }
    [[nodiscard]] bool isSameElement(const Implementation& other) const override {
        const auto* application = dynamic_cast<const ApplicationElement*>(&other);
        return application && application->process_ == process_;
    }

private:
    const std::weak_ptr<Context> context_;
    const std::optional<ProcessID> process_;
};

CompanionAccessibility::CompanionAccessibility(CompanionState& state,
                                               const CompanionScreens& screens,
                                               CompanionOutbox& outbox, MainLoop& loop,
                                               std::function<void()> tell)
    : state_(state)
    , screens_(screens)
    , outbox_(outbox)
    , loop_(loop)
    , tell_(std::move(tell))
    , frames_(
          loop,
          [this](CompanionWindowID window) {
              return state_.window(window) ? AXError::success : AXError::invalidUIElement;
          },
          [this](CompanionWindowID window, const WrittenFrame& frame) { finish(window, frame); })
    , context_(std::make_shared<Context>(Context{state_, frames_})) {
    connect(&state_, &CompanionState::connectedChanged, this,
            &CompanionAccessibility::trustMayHaveChanged);
    connect(&state_, &CompanionState::keySourceChanged, this,
            &CompanionAccessibility::trustMayHaveChanged);
    wasTrusted_ = isTrusted();
}

void CompanionAccessibility::trustMayHaveChanged() {
    if (std::exchange(wasTrusted_, isTrusted()) == isTrusted())
        return;
    if (isTrusted())
        wait_.reset();
    Q_EMIT trustChanged();
}

CompanionAccessibility::~CompanionAccessibility() = default;

bool CompanionAccessibility::requestTrust() {
    if (isTrusted())
        return true;
    if (wait_.isActive())
        return false;
    if (std::exchange(hasWaited_, true)) {
        tell_();
        return false;
    }
    wait_ = ScopedTimer(loop_.scheduleOnce(loginPatience, [this] { tell_(); }));
    return false;
}

AccessibilityElement CompanionAccessibility::systemWideElement() const {
    return AccessibilityElement(std::make_shared<ApplicationElement>(context_, std::nullopt));
}

AccessibilityElement CompanionAccessibility::applicationElement(ProcessID process) const {
    return AccessibilityElement(std::make_shared<ApplicationElement>(context_, process));
}

AXResult<AccessibilityElement> CompanionAccessibility::elementAtPosition(AXPoint point) const {
    if (!std::isfinite(point.x) || !std::isfinite(point.y))
        return {AXError::illegalArgument, {}};
    if (!isTrusted())
        return {AXError::apiDisabled, {}};
    if (const auto dragged = state_.dragged())
        return {AXError::success, WindowElement::make(context_, dragged->id)};
    const auto active = state_.lastActive();
    if (!active)
        return {AXError::noValue, {}};
    const AXPoint corner = screens_.coordinates().toAX({active->frame.x, active->frame.y});
    const AppKitRect frame{corner.x, corner.y, active->frame.width, active->frame.height};
    if (!frame.contains({point.x, point.y}))
        return {AXError::noValue, {}};
    return {AXError::success, WindowElement::make(context_, active->id)};
}

std::unique_ptr<AccessibilityValue> CompanionAccessibility::makeValue(AXPoint position) const {
    if (!std::isfinite(position.x) || !std::isfinite(position.y))
        return nullptr;
    return std::make_unique<Value>(position);
}

std::unique_ptr<AccessibilityValue> CompanionAccessibility::makeValue(AXSize size) const {
    if (!std::isfinite(size.width) || !std::isfinite(size.height))
        return nullptr;
    return std::make_unique<Value>(size);
}

void CompanionAccessibility::finish(CompanionWindowID window, const WrittenFrame& frame) {
    const auto known = state_.window(window);
    if (!known)
        return;
    const CompanionCoordinates& coordinates = screens_.coordinates();
    const AXPoint position =
        frame.position.value_or(coordinates.toAX({known->frame.x, known->frame.y}));
    const AXSize size = frame.size.value_or(AXSize{known->frame.width, known->frame.height});
    outbox_.setFrame(window, coordinates.toCompanion(position, size));
}

} // namespace tilewright
