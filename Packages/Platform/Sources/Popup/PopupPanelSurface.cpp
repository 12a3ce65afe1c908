#include "PopupPanelSurface.h"

#include <QApplication>
#include <cmath>
#include <utility>

namespace tilewright {

namespace {

/// How far from the place of a former click the pointer is still taken to be on the item, where its
/// host tells no place; in points of AppKit screen space.
constexpr double itemReach = 32;
/// A host passes a click on well within this time.
constexpr std::chrono::milliseconds clickPassingTime{1500};

} // namespace

PopupPanelSurface::PopupPanelSurface(const PlatformServices& services, InputBarrier barrier,
                                     ViewFactory makeView, std::unique_ptr<PanelChrome> chrome)
    : services_(services)
    , barrier_(std::move(barrier))
    , makeView_(std::move(makeView))
    , window_(services, std::move(chrome)) {
    connect(&window_, &PanelWindow::escaped, this, [this] { dismiss(PanelDismissal::escape); });
    connect(&window_, &PanelWindow::pressedOutside, this,
            [this] { dismiss(PanelDismissal::pressOutside); });
    connect(&window_, &PanelWindow::hidden, this, &PopupPanelSurface::windowHidden);
    connect(&services_.workspace, &Workspace::activeWindowChanged, this,
            [this] { dismiss(PanelDismissal::anotherWindow); });
}

PopupPanelSurface::~PopupPanelSurface() {
    forgetPress();
}

void PopupPanelSurface::open(const Anchor& anchor) {
    if (isOpen())
        return;
    forgetPress();
    AppKitRect place;
    if (anchor) {
        place = *anchor;
    } else {
        const AppKitPoint pointer = services_.pointer.location();
        place = {pointer.x, pointer.y, 0, 0};
    }
    window_.open(makeView_(), place);
    opening_.emplace();
    // The press that opened the panel must not dismiss it.
    barrier_(opening_->guard([this] { watchPresses(); }));
    Q_EMIT opened();
}

void PopupPanelSurface::close() {
    dismiss(PanelDismissal::request);
}

void PopupPanelSurface::toggle(const Anchor& item) {
    if (isOpen()) {
        close();
        return;
    }
    if (!isPressOnItem()) {
        openBeside(item);
        return;
    }
    // The click may be a new one whose press has not been heard of yet.
    barrier_(life_.guard([this, item] {
        if (isOpen())
            return;
        const bool isDismissedByThisClick = isPressOnItem();
        forgetPress();
        if (!isDismissedByThisClick)
            openBeside(item);
    }));
}

void PopupPanelSurface::openBeside(const Anchor& item) {
    itemPlace_ = item.value_or(AppKitRect());
    itemPointer_ = services_.pointer.location();
    open(item);
}

void PopupPanelSurface::dismiss(PanelDismissal why) {
    if (!isOpen())
        return;
    why_ = why;
    window_.close();
}

void PopupPanelSurface::windowHidden() {
    opening_.reset();
    const PanelDismissal why = std::exchange(why_, PanelDismissal::desktop);
    if (why == PanelDismissal::pressOutside)
        awaitClickOfPress();
    if (!isPressOnItem())
        forgetPress();
    Q_EMIT dismissed(why);
}

void PopupPanelSurface::watchPresses() {
    if (!monitors_.empty())
        return;
    const EventMask mask{EventType::leftMouseDown, EventType::leftMouseUp,
                         EventType::rightMouseDown, EventType::otherMouseDown};
    EventMonitors& monitors = services_.eventMonitors;
    for (const auto& token :
         {monitors.addGlobalMonitor(
              mask, [this](const Event& event) { handle(event, Receiver::others); }),
          monitors.addLocalMonitor(mask,
                                   [this](const Event& event) { handle(event, Receiver::own); })}) {
        if (token)
            monitors_.push_back(*token);
    }
}

void PopupPanelSurface::handle(const Event& event, Receiver receiver) {
    if (event.type == EventType::leftMouseUp) {
        if (press_ == Press::downOnItem)
            press_ = Press::releasedOnItem;
        return;
    }
    if (!isOpen()) {
        pressedWhileClosed();
        return;
    }
    const bool isInside = window_.isUnderPointer();
    if (isInside)
        press_ = Press::none;
    else
        press_ = isPointerOnItem() ? Press::downOnItem : Press::elsewhere;
    // A press anywhere counts as one in this application's popup, also before the grab that brings
    // it here has been granted; one beside a menu of the panel's ends only the menu.
    const bool isForQt =
        receiver == Receiver::own &&
        (isInside || window_.holdsInput() || QApplication::activePopupWidget() != &window_);
    if (!isForQt)
        dismiss(PanelDismissal::pressOutside);
}

void PopupPanelSurface::pressedWhileClosed() {
    if (press_ == Press::awaitedOnItem)
        press_ = Press::downOnItem;
    else
        // The beginning of another click.
        forgetPress();
}

void PopupPanelSurface::awaitClickOfPress() {
    // Qt and the monitors hear of a press in either order.
    if (press_ == Press::none && isPointerOnItem())
        press_ = Press::awaitedOnItem;
    if (!isPressOnItem())
        return;
    watchPresses();
    pressTimer_ =
        ScopedTimer(services_.mainLoop.scheduleOnce(clickPassingTime, [this] { forgetPress(); }));
}

void PopupPanelSurface::forgetPress() {
    press_ = Press::none;
    pressTimer_.reset();
    for (const MonitorToken token : std::exchange(monitors_, {}))
        services_.eventMonitors.removeMonitor(token);
}

bool PopupPanelSurface::isPressOnItem() const {
    return press_ == Press::awaitedOnItem || press_ == Press::downOnItem ||
           press_ == Press::releasedOnItem;
}

bool PopupPanelSurface::isPointerOnItem() const {
    const AppKitPoint at = services_.pointer.location();
    if (!itemPlace_.isEmpty())
        return itemPlace_.contains(at);
    return std::abs(at.x - itemPointer_.x) + std::abs(at.y - itemPointer_.y) <= itemReach;
}

} // namespace tilewright
