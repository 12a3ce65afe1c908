#pragma once

#include "Geometry.h"

#include <QMargins>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>

class QPainter;
class QPalette;
class QRect;
class QWidget;

namespace tilewright {

/// How a surface can show what surrounds a panel's content.
enum class PanelRendering {
    /// The desktop blends translucent windows with what lies beneath them.
    translucent,
    /// It does not: whatever is not painted is black.
    opaque,
};

/// What surrounds a panel's content: its ground, and whatever lies around that. Lengths are in
/// points.
class PanelChrome {
public:
    virtual ~PanelChrome() = default;

    /// The room around the ground, such as a shadow's. The content fills the ground.
    [[nodiscard]] virtual QMargins margins(PanelRendering rendering) const = 0;
    /// Paints a whole surface of this size: the ground and what is around it.
    virtual void paint(QPainter& painter, const QRect& surface, const QPalette& palette,
                       PanelRendering rendering) = 0;
};

/// Why a panel went.
enum class PanelDismissal {
    /// `close` or `toggle` asked for it.
    request,
    escape,
    /// The user pressed a button of the mouse outside the panel.
    pressOutside,
    /// The user works in another window by now.
    anotherWindow,
    /// The desktop took it away.
    desktop,
};

/// The panel that opens beside the status item. The application says what is in it and what it
/// looks like; this says where it is, gives it the keyboard, and knows when it has to go: on
/// Escape, on a press outside it and when another window becomes the active one.
///
/// Its content is made anew at each opening and destroyed after each dismissal. It is as large as
/// its content wants to be, wherever that fits on the display, and follows changes of that wish and
/// of the displays; a lower display gives the content less height, and the content copes. Opening
/// it takes no focus away from other applications' windows. Main thread only.
class PanelSurface : public QObject {
    Q_OBJECT

public:
    /// Makes the content.
    using ViewFactory = std::function<std::unique_ptr<QWidget>()>;
    /// Where to open, in AppKit screen space: beside an item's rectangle, or by the point where an
    /// empty one lies, on the nearest display; none stands for "by the pointer".
    using Anchor = std::optional<AppKitRect>;

    using QObject::QObject;
    ~PanelSurface() override;

    /// Opens it. Does nothing while it is open.
    virtual void open(const Anchor& anchor) = 0;
    /// Closes it. Does nothing while it is closed.
    virtual void close() = 0;
    /// Does what a click on the item there asks for: closes the panel while it is open, opens it
    /// while it is closed, and leaves it closed where the press of this very click has just
    /// dismissed it.
    virtual void toggle(const Anchor& item) = 0;
    [[nodiscard]] virtual bool isOpen() const = 0;

Q_SIGNALS:
    /// It is on the display, with new content.
    void opened();
    /// It has left the display; its content is on its way out.
    void dismissed(PanelDismissal why);
};

} // namespace tilewright
