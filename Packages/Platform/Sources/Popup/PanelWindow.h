#pragma once

#include "PanelPlacement.h"
#include "PopupGrab.h"

#include <Platform/Platform.h>

#include <QPointer>
#include <QWidget>
#include <memory>

namespace tilewright {

/// The popup's window: the content on its ground, with the chrome around it, beside its item and
/// wholly on its display. Its top edge stays where it is as far as its growth was foreseen. While
/// it is shown it has the keyboard and the pointer, by grabs, and no other window loses the focus
/// to it. It says what the user does; whoever opened it closes it. One window serves every opening.
/// Main thread only.
class PanelWindow final : public QWidget {
    Q_OBJECT

public:
    /// The services have to outlive the window.
    PanelWindow(const PlatformServices& services, std::unique_ptr<PanelChrome> chrome);
    ~PanelWindow() override;

    /// Shows the content beside a place, or by the point where an empty one lies. The content is
    /// destroyed when the window is hidden.
    void open(std::unique_ptr<QWidget> view, const AppKitRect& place);

    /// The ground, without what is around it, in Qt's coordinates.
    [[nodiscard]] QRect groundGeometry() const;
    /// Whether the pointer is over the ground; costs a round trip to the display server.
    [[nodiscard]] bool isUnderPointer() const;
    /// Whether Qt hears of presses outside, too.
    [[nodiscard]] bool holdsInput() const { return grab_.isHeld(); }
    /// The content now shown; null while closed.
    [[nodiscard]] QWidget* view() const { return view_; }

Q_SIGNALS:
    void escaped();
    /// The user pressed a button of the mouse outside the ground.
    void pressedOutside();
    /// It has left the screen, for whatever reason.
    void hidden();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    [[nodiscard]] QMargins margins() const { return chrome_->margins(rendering_); }
    void fitAndPlace();
    void placeAnew();
    void layOutView();
    /// Tells the content of a press that opens menus and that it has no use for.
    void offerContextMenu(const QMouseEvent& press);
    /// To be called while the window is not shown, hence without the focus.
    void dropStaleFocusConnections();

    const PlatformServices services_;
    std::unique_ptr<PanelChrome> chrome_;
    PanelRendering rendering_ = PanelRendering::opaque;
    QPointer<QWidget> view_;
    AppKitRect place_;
    PanelGrowth growth_;
    bool isFitting_ = false;
    PopupGrab grab_;
};

} // namespace tilewright
