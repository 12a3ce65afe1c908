#include "MenuBarExtra.h"

#include "InputSoFar.h"
#include "ScreenSpace.h"

#include <Platform/Platform.h>

namespace tilewright {

namespace {

/// How far from the place of a former click the pointer is still taken to be on the item, where its
/// host tells no place; in native pixels.
constexpr int itemReach = 32;
/// A host passes a click on well within this time.
constexpr std::chrono::milliseconds clickPassingTime{1500};

} // namespace

MenuBarExtra::MenuBarExtra(PanelWindow::ViewFactory makeView)
    : panel_(std::move(makeView)) {
    Platform& platform = Platform::current();
    connect(&platform.statusItem(), &StatusItem::activated, this, &MenuBarExtra::clicked);
    connect(&platform.instanceActivation(), &InstanceActivation::activationRequested, this,
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
    panel_.open(QRect());
}

void MenuBarExtra::closePanel() {
    panel_.close();
}

void MenuBarExtra::clicked(const QRect& place) {
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

void MenuBarExtra::open(const QRect& place) {
    itemPlace_ = place;
    itemPointer_ = pointer();
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
    EventMonitors& monitors = Platform::current().eventMonitors();
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
    // The toolkit and the monitors hear of a press in either order.
    if (press_ == Press::none && isPointerOnItem())
        press_ = Press::awaitedOnItem;
    if (!isPressOnItem())
        return;
    watchPresses();
    MainLoop& loop = Platform::current().mainLoop();
    pressTimer_ = ScopedTimer(loop.scheduleOnce(clickPassingTime, [this] { forgetPress(); }));
}

void MenuBarExtra::forgetPress() {
    press_ = Press::none;
    pressTimer_.reset();
    for (const MonitorToken token : std::exchange(monitors_, {}))
        Platform::current().eventMonitors().removeMonitor(token);
}

bool MenuBarExtra::isPressOnItem() const {
    return press_ == Press::awaitedOnItem || press_ == Press::downOnItem ||
           press_ == Press::releasedOnItem;
}

bool MenuBarExtra::isPointerOnItem() const {
    const QPoint at = pointer();
    return itemPlace_.isEmpty() ? (at - itemPointer_).manhattanLength() <= itemReach
                                : itemPlace_.contains(at);
}

QPoint MenuBarExtra::pointer() {
    return ScreenSpace::nativePointer(ScreenSpace::all());
}

} // namespace tilewright
