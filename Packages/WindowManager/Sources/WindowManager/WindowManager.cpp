#include "WindowManager.h"

#include "CoordinateConverter.h"

namespace tilewright {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostParents = 25;

bool isWindow(const AccessibilityElement& element) {
    const auto role = element.string(AXAttribute::role);
    return role.value && *role.value == QLatin1StringView(axWindowRole);
}

QString textOf(const AccessibilityElement& element, AXAttribute attribute) {
    return element.string(attribute).value.value_or(u"?"_s);
}

} // namespace

WindowManager& WindowManager::shared() {
    return SharedInstance<WindowManager>::get();
}

bool WindowManager::isAccessibilityGranted() const {
    return Platform::current().accessibility.isTrusted();
}

bool WindowManager::requestAccessibilityPermission() {
    return Platform::current().accessibility.requestTrust();
}

void WindowManager::moveFocusedWindow(const ZoneRect& rect) {
    if (!isAccessibilityGranted())
        throw WindowManagerError::accessibilityDenied();
    setFrame(resolveFocusedWindow(), rect);
}

void WindowManager::snapFocusedWindow(const Zone& zone, const ScreenPtr& screen) {
    ScreenPtr target = screen ? screen : screenWithMouse();
    if (!target)
        target = Platform::current().screens.main();
    if (!target)
        throw WindowManagerError::noScreen();
    const ZoneRect rect = zone.axRect(*target);
    if (!isAccessibilityGranted())
        throw WindowManagerError::accessibilityDenied();
    setFrame(resolveFocusedWindow(), rect);
}

std::optional<AccessibilityElement>
WindowManager::windowElementAtScreenPoint(AppKitPoint point) const {
    const auto element =
        Platform::current().accessibility.elementAtPosition(CoordinateConverter::appKitToAX(point));
    return element.value ? enclosingWindow(*element.value) : std::nullopt;
}

void WindowManager::snap(const AccessibilityElement& window, const Zone& zone,
                         const Screen& screen) {
    if (!isAccessibilityGranted())
        throw WindowManagerError::accessibilityDenied();
    setFrame(window, zone.axRect(screen));
}

ScreenPtr WindowManager::screenWithMouse() {
    return Platform::current().screens.at(Platform::current().pointer.location());
}

AccessibilityElement WindowManager::resolveFocusedWindow() const {
    auto& accessibility = Platform::current().accessibility;
    const auto focused = accessibility.systemWideElement().element(AXAttribute::focusedUIElement);
    if (focused.value) {
        // The window attribute before the role: the other way round than in enclosingWindow.
        if (const auto window = focused.value->element(AXAttribute::window); window.value)
            return *window.value;
        if (isWindow(*focused.value))
            return *focused.value;
    }
    const auto frontmost = Platform::current().workspace.frontmostApplication();
    if (!frontmost)
        throw WindowManagerError::noFrontmostApp();
    const auto window =
        accessibility.applicationElement(*frontmost).element(AXAttribute::focusedWindow);
    if (!window.value)
        throw WindowManagerError::noFocusedWindow();
    return *window.value;
}

void WindowManager::setFrame(const AccessibilityElement& window, const ZoneRect& rect) {
    auto& accessibility = Platform::current().accessibility;
    const auto position = accessibility.makeValue(AXPoint{rect.x, rect.y});
    if (!position)
        throw WindowManagerError::axValueCreationFailed();
    const auto size = accessibility.makeValue(AXSize{rect.width, rect.height});
    if (!size)
        throw WindowManagerError::axValueCreationFailed();
    const std::shared_ptr<void> move = window.beginMove();
    // Size, move, size: a window may be held to what the display that it is on allows. Only the
    // last two results count.
    window.setValue(AXAttribute::size, *size);
    const AXError positionError = window.setValue(AXAttribute::position, *position);
    const AXError sizeError = window.setValue(AXAttribute::size, *size);
    if (positionError != AXError::success || sizeError != AXError::success)
        throw WindowManagerError::axSetFailed(positionError, sizeError, describe(window));
}

std::optional<AccessibilityElement>
WindowManager::enclosingWindow(const AccessibilityElement& element) const {
    if (isWindow(element))
        return element;
    if (auto window = element.element(AXAttribute::window); window.value)
        return window.value;
    AccessibilityElement current = element;
    for (int step = 0; step < mostParents; ++step) {
        const auto parent = current.element(AXAttribute::parent);
        if (!parent.value)
            return std::nullopt;
        if (isWindow(*parent.value))
            return parent.value;
        current = *parent.value;
    }
    return std::nullopt;
}

QString WindowManager::describe(const AccessibilityElement& window) const {
    ProcessID process = 0;
    window.processID(process);
    const QString name = Platform::current().workspace.localizedName(process).value_or(
        u"pid "_s + QString::number(process));
    const QString role = textOf(window, AXAttribute::role);
    const QString subrole = textOf(window, AXAttribute::subrole);
    return u"app="_s + name + u" role="_s + role + u" subrole="_s + subrole;
}

} // namespace tilewright
