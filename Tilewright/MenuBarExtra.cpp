#include "MenuBarExtra.h"

#include "ScreenSpace.h"

#include <Platform/Platform.h>

#include <QPointer>

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
    connect(&panel_, &PanelWindow::opened, this, &MenuBarExtra::watchButton);
    connect(&panel_, &PanelWindow::closed, this, [this] {
        if (!isPressOnItem_)
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
    if (!isPressOnItem_) {
        open(place);
        return;
    }
    // The click may be a new one whose press has not been heard of yet: what happened before this
    // round trip is handed out before what is posted after it.
    static_cast<void>(pointer());
    Platform::current().mainLoop().post([self = QPointer<MenuBarExtra>(this), place] {
        if (!self)
            return;
        const bool closedByThisClick = self->isPressOnItem_;
        self->forgetPress();
        if (!closedByThisClick)
            self->open(place);
    });
}

void MenuBarExtra::open(const QRect& place) {
    itemPlace_ = place;
    itemPointer_ = pointer();
    panel_.open(place);
}

void MenuBarExtra::pressClosedPanel() {
    const QPoint at = pointer();
    const bool isOnItem = itemPlace_.isEmpty() ? (at - itemPointer_).manhattanLength() <= itemReach
                                               : itemPlace_.contains(at);
    if (!isOnItem)
        return;
    watchButton();
    isPressOnItem_ = true;
    isReleased_ = false;
    MainLoop& loop = Platform::current().mainLoop();
    pressTimer_ = ScopedTimer(loop.scheduleOnce(clickPassingTime, [this] { forgetPress(); }));
    // By then the press has been heard of in any case, and perhaps its release too.
    loop.post([self = QPointer<MenuBarExtra>(this)] {
        if (self && !self->isButtonDown_)
            self->isReleased_ = true;
    });
}

void MenuBarExtra::watchButton() {
    if (!monitors_.empty())
        return;
    const auto watch = [this](const Event& event) {
        isButtonDown_ = event.type == EventType::leftMouseDown;
        if (!isButtonDown_)
            isReleased_ = true;
        else if (isPressOnItem_ && isReleased_)
            // The beginning of another click.
            forgetPress();
    };
    EventMonitors& monitors = Platform::current().eventMonitors();
    const EventMask mask{EventType::leftMouseDown, EventType::leftMouseUp};
    for (const auto& token :
         {monitors.addGlobalMonitor(mask, watch), monitors.addLocalMonitor(mask, watch)}) {
        if (token)
            monitors_.push_back(*token);
    }
}

void MenuBarExtra::forgetPress() {
    isPressOnItem_ = false;
    isButtonDown_ = false;
    pressTimer_.reset();
    for (const MonitorToken token : std::exchange(monitors_, {}))
        Platform::current().eventMonitors().removeMonitor(token);
}

QPoint MenuBarExtra::pointer() {
    return ScreenSpace::nativePointer(ScreenSpace::all());
}

} // namespace tilewright
