#pragma once

#include "PanelChrome.h"

#include <Platform/EventMonitors.h>
#include <Platform/Geometry.h>
#include <Platform/MainLoop.h>

#include <QPointer>
#include <QWidget>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QScrollArea;

namespace tilewright {

/// The window of the menu-bar panel: frameless, beside its item, wholly on its screen.
///
/// Opening it takes no focus away from other applications' windows, and it has the keyboard all the
/// same, by a grab. It closes on Escape, on a press outside it and when another window becomes the
/// active one. Its content is made anew at each opening and destroyed at closing. One window serves
/// every opening. Main thread only.
class PanelWindow final : public QWidget {
    Q_OBJECT

public:
    using ViewFactory = std::function<std::unique_ptr<QWidget>()>;

    explicit PanelWindow(ViewFactory makeView);
    ~PanelWindow() override;

    /// Opens beside a place, which is where the status item said it is: empty where only a point is
    /// known, none for "by the pointer". Does nothing while it is open.
    void open(const std::optional<AppKitRect>& place);

    /// The panel itself, without the shadow around it, in Qt's coordinates.
    [[nodiscard]] QRect groundGeometry() const;
    /// Whether the pointer is over the panel itself; costs a round trip to the display server.
    [[nodiscard]] bool isUnderPointer() const;
    /// The content now shown; null while closed.
    [[nodiscard]] QWidget* view() const { return view_; }

Q_SIGNALS:
    /// It is on screen, with new content.
    void opened();
    /// Closed by a press of a mouse button outside the panel; sent before `closed`.
    void closedByPress();
    /// It has left the screen, for whatever reason; its content is on its way out.
    void closed();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void closeForPress();
    void makeContent();
    void fitAndPlace();
    [[nodiscard]] QSize contentSize(int availableHeight) const;
    void holdInput();
    void releaseInput();
    void watchOutside();
    /// To be called while the window is not shown, hence without the focus.
    void dropStaleFocusConnections();

    ViewFactory makeView_;
    PanelChrome chrome_;
    QScrollArea* scrollArea_;
    QPointer<QWidget> view_;
    AppKitRect place_;
    bool isFitting_ = false;
    bool isClosingForPress_ = false;
    bool holdsInput_ = false;
    /// How long it waits before it asks for the keyboard and the pointer once more.
    std::chrono::milliseconds grabWait_{};
    /// How often it has been opened.
    int opening_ = 0;
    ScopedTimer grabTimer_;
    std::vector<MonitorToken> pressMonitors_;
};

} // namespace tilewright
