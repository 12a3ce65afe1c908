#pragma once

#include <Platform/Geometry.h>

#include <QWidget>
#include <memory>

namespace tilewright::appkit {

/// The properties of a new window, with AppKit's names and numbers for them. Its content rectangle
/// is empty at first, its background clear.
struct WindowProperties {
    /// 0 is borderless.
    quint64 styleMask = 0;
    /// 2 is buffered.
    quint64 backing = 2;
    bool defer = false;
    bool opaque = false;
    qint64 level = 0;
    bool ignoresMouseEvents = false;
    quint64 collectionBehavior = 0;
    bool hasShadow = false;
    bool releasedWhenClosed = false;
    /// A panel of AppKit's that can have the keyboard without a title bar, and that stays when
    /// another application is the active one. Its view is the first to receive keys.
    bool isKeyPanel = false;
};

/// A window of AppKit that holds one of Qt's views. Ordered out, and gone, when it ends.
class HostWindow {
public:
    HostWindow() = default;
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    virtual ~HostWindow() = default;

    /// Puts Qt's native view into the window, which it fills from now on. Qt goes
    /// on owning it.
    virtual void setContent(WId view) = 0;
    /// Takes the view out again: it has to leave the window before either ends.
    virtual void removeContent() = 0;
    /// In AppKit screen space; what is shown is redrawn at once.
    virtual void setFrame(const AppKitRect& frame) = 0;
    /// In front of everything on its level, and receives the keys from now on.
    virtual void makeKeyAndOrderFront() = 0;
    /// In front of everything on its level, without activating the application.
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
};

/// A new window, not shown yet.
[[nodiscard]] std::unique_ptr<HostWindow> makeWindow(const WindowProperties& properties);

} // namespace tilewright::appkit
