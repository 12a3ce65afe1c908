#include "X11WindowElement.h"

#include "X11WindowFacts.h"

namespace tilewright {
namespace {

AXError errorOf(const X11WindowFacts& facts) {
    if (facts.exists)
        return AXError::success;
    return facts.isUnknown ? AXError::cannotComplete : AXError::invalidUIElement;
}

AccessibilityElement windowElement(const std::weak_ptr<X11ElementContext>& context,
                                   xcb_window_t window) {
    return AccessibilityElement(std::make_shared<X11WindowElement>(context, window));
}

} // namespace

AXResult<QString> X11WindowElement::string(AXAttribute attribute) const {
    const bool isRole = attribute == AXAttribute::role;
    if (!isRole && attribute != AXAttribute::subrole)
        return {AXError::attributeUnsupported, {}};
    const auto context = context_.lock();
    if (!context)
        return {AXError::invalidUIElement, {}};
    if (isRole && seenManaged_ == context->connection.moment())
        return {AXError::success, QString::fromLatin1(axWindowRole)};
    const X11WindowFacts facts = readWindowFacts(context->connection, window_);
    if (const AXError error = errorOf(facts); error != AXError::success)
        return {error, {}};
    if (isRole)
        return {AXError::success,
                facts.isManaged ? QString::fromLatin1(axWindowRole) : QStringLiteral("AXGroup")};
    if (!facts.isManaged)
        return {AXError::noValue, {}};
    return {AXError::success,
            facts.isDialog ? QStringLiteral("AXDialog") : QStringLiteral("AXStandardWindow")};
}

AXResult<AccessibilityElement> X11WindowElement::element(AXAttribute attribute) const {
    const auto context = context_.lock();
    if (!context)
        return {AXError::invalidUIElement, {}};
    if (attribute == AXAttribute::window) {
        const X11WindowFacts facts = readWindowFacts(context->connection, window_);
        if (const AXError error = errorOf(facts); error != AXError::success)
            return {error, {}};
        if (!facts.isManaged)
            return {AXError::noValue, {}};
        return {AXError::success, windowElement(context_, window_)};
    }
    if (attribute == AXAttribute::parent) {
        X11Connection& connection = context->connection;
        const auto tree =
            connection.reply<xcb_query_tree_reply_t>(xcb_query_tree(connection.xcb(), window_));
        if (!tree)
            return {AXError::invalidUIElement, {}};
        if (tree->parent == XCB_NONE)
            return {AXError::noValue, {}};
        return {AXError::success, windowElement(context_, tree->parent)};
    }
    return {AXError::attributeUnsupported, {}};
}

AXError X11WindowElement::setValue(AXAttribute attribute, const AccessibilityValue& value) const {
    const auto context = context_.lock();
    if (!context)
        return AXError::invalidUIElement;
    const auto* own = dynamic_cast<const X11Value*>(&value);
    if (!own)
        return AXError::illegalArgument;
    if (attribute == AXAttribute::position)
        return own->position ? context->frameSetter.setPosition(window_, *own->position)
                             : AXError::illegalArgument;
    if (attribute == AXAttribute::size)
        return own->size ? context->frameSetter.setSize(window_, *own->size)
                         : AXError::illegalArgument;
    return AXError::attributeUnsupported;
}

AXError X11WindowElement::processID(ProcessID& id) const {
    const auto context = context_.lock();
    if (!context)
        return AXError::invalidUIElement;
    const X11WindowFacts facts = readWindowFacts(context->connection, window_);
    if (const AXError error = errorOf(facts); error != AXError::success)
        return error;
    if (facts.processID == 0)
        return AXError::noValue;
    id = facts.processID;
    return AXError::success;
}

bool X11WindowElement::isSameElement(const Implementation& other) const {
    const auto* window = dynamic_cast<const X11WindowElement*>(&other);
    return window && window->window_ == window_;
}

AXResult<QString> X11ApplicationElement::string(AXAttribute attribute) const {
    if (attribute != AXAttribute::role)
        return {AXError::attributeUnsupported, {}};
    return {AXError::success,
            process_ ? QStringLiteral("AXApplication") : QStringLiteral("AXSystemWide")};
}

AXResult<AccessibilityElement> X11ApplicationElement::element(AXAttribute attribute) const {
    const auto context = context_.lock();
    if (!context)
        return {AXError::invalidUIElement, {}};
    const bool isFocus = attribute == AXAttribute::focusedUIElement;
    if (!isFocus && !(process_ && attribute == AXAttribute::focusedWindow))
        return {AXError::attributeUnsupported, {}};
    const auto window = process_ ? context->activeWindow.lastActiveOf(*process_)
                                 : context->activeWindow.lastActive();
    if (!window)
        return {AXError::noValue, {}};
    return {AXError::success, windowElement(context_, *window)};
}

AXError X11ApplicationElement::setValue(AXAttribute /*attribute*/,
                                        const AccessibilityValue& /*value*/) const {
    return AXError::attributeUnsupported;
}

AXError X11ApplicationElement::processID(ProcessID& id) const {
    if (!process_)
        return AXError::noValue;
    id = *process_;
    return AXError::success;
}

bool X11ApplicationElement::isSameElement(const Implementation& other) const {
    const auto* application = dynamic_cast<const X11ApplicationElement*>(&other);
    return application && application->process_ == process_;
}

} // namespace tilewright
