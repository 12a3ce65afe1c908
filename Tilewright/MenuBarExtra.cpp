#include "MenuBarExtra.h"

#include "InputSoFar.h"

#include <Platform/Platform.h>

#include <cmath>

namespace tilewright {

namespace {

/// How far from the place of a former click the pointer is still taken to be on the item, where its
/// host tells no place; in points of AppKit screen space.
constexpr double itemReach = 32;
/// A host passes a click on well within this time.
constexpr std::chrono::milliseconds clickPassingTime{1500};

} // namespace

MenuBarExtra::MenuBarExtra(PanelWindow::ViewFactory makeView)
    : panel_(std::move(makeView)) {
    Platform& platform = Platform::current();
    connect(&platform.statusItem(), &StatusItem::activated, this, &MenuBarExtra::clicked);
    connect(&platform.instanceActivation, &InstanceActivation::activationRequested, this,
            &MenuBarExtra::openByPointer);
    connect(&panel_, &PanelWindow::opened, this, [this] {
        forgetPress();
        afterInputSoFar(this, [this, opening = ++opening_] {
            if (panel_.isVisible() && opening == opening_)
                watchPresses();
        });
    });
    connect(&panel_, &PanelWindow::closed, this, [this] {
        if (!isPressOnItem())
            forgetPress();
    });
    connect(&panel_, &PanelWindow::closedByPress, this, &MenuBarExtra::pressClosedPanel);
}

MenuBarExtra::~MenuBarExtra() {
    forgetPress();
}

void MenuBarExtra::openByPointer() {
    panel_.open(std::nullopt);
}

void MenuBarExtra::closePanel() {
    panel_.close();
}

void MenuBarExtra::clicked(const std::optional<AppKitRect>& place) {
    if (panel_.isVisible()) {
        panel_.close();
        return;
    }
    if (!isPressOnItem()) {
        open(place);
        return;
    }
    // The click may be a new one whose press has not been heard of yet.
    afterInputSoFar(this, [this, place] {
        if (panel_.isVisible())
            return;
        const bool closedByThisClick = isPressOnItem();
        forgetPress();
        if (!closedByThisClick)
            open(place);
    });
}

void MenuBarExtra::open(const std::optional<AppKitRect>& place) {
    itemPlace_ = place.value_or(AppKitRect());
    itemPointer_ = Platform::current().pointer.location();
    panel_.open(place);
}

void MenuBarExtra::watchPresses() {
    if (!monitors_.empty())
        return;
    const auto watch = [this](const Event& event) {
        if (event.type == EventType::leftMouseDown)
            pressed();
        else
            released();
    };
    EventMonitors& monitors = Platform::current().eventMonitors;
    const EventMask mask{EventType::leftMouseDown, EventType::leftMouseUp};
    for (const auto& token :
         {monitors.addGlobalMonitor(mask, watch), monitors.addLocalMonitor(mask, watch)}) {
        if (token)
            monitors_.push_back(*token);
    }
}

void MenuBarExtra::pressed() {
    if (press_ == Press::awaitedOnItem) {
        press_ = Press::downOnItem;
    } else if (!panel_.isVisible()) {
        // The beginning of another click.
        forgetPress();
    } else if (panel_.isUnderPointer()) {
        press_ = Press::none;
    } else {
        press_ = isPointerOnItem() ? Press::downOnItem : Press::elsewhere;
    }
}

void MenuBarExtra::released() {
    if (press_ == Press::downOnItem)
        press_ = Press::releasedOnItem;
}

void MenuBarExtra::pressClosedPanel() {
    // Qt and the monitors hear of a press in either order.
    if (press_ == Press::none && isPointerOnItem())
        press_ = Press::awaitedOnItem;
    if (!isPressOnItem())
        return;
    watchPresses();
    MainLoop& loop = Platform::current().mainLoop;
    pressTimer_ = ScopedTimer(loop.scheduleOnce(clickPassingTime, [this] { forgetPress(); }));
}

void MenuBarExtra::forgetPress() {
    press_ = Press::none;
    pressTimer_.reset();
    for (const MonitorToken token : std::exchange(monitors_, {}))
        Platform::current().eventMonitors.removeMonitor(token);
}

bool MenuBarExtra::isPressOnItem() const {
    return press_ == Press::awaitedOnItem || press_ == Press::downOnItem ||
           press_ == Press::releasedOnItem;
}

bool MenuBarExtra::isPointerOnItem() const {
    const AppKitPoint at = Platform::current().pointer.location();
    if (!itemPlace_.isEmpty())
        return itemPlace_.contains(at);
    return std::abs(at.x - itemPointer_.x) + std::abs(at.y - itemPointer_.y) <= itemReach;
}

} // namespace tilewright
