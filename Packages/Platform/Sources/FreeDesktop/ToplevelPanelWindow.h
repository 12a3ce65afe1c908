#pragma once

#include <Platform/PanelSurface.h>

#include <QWidget>
#include <functional>
#include <memory>

namespace tilewright {

/// The panel as an ordinary frameless window, for compositors that let no program place a popup. It
/// tells when it has to go, and goes when it is retired. Main thread only.
class ToplevelPanelWindow final : public QWidget {
    Q_OBJECT

public:
    using Dismiss = std::function<void(PanelDismissal)>;

    /// How much room there is around its ground once that has this size; called with how much
    /// higher that may yet become, too. All in Qt's points.
    using RoomAround = std::function<QMargins(QSize ground, int roomToGrow)>;

    /// `chrome` has to outlive this. `dismiss` is called at Escape, once another window has the
    /// focus, and when the desktop closes this one; it may retire it.
    ToplevelPanelWindow(std::unique_ptr<QWidget> view, PanelChrome& chrome, Dismiss dismiss);
    ~ToplevelPanelWindow() override;

    /// The title by which the window is known; no other window of this program has it.
    [[nodiscard]] static QString title();

    /// Makes the window as large as its content wants to be, and follows that wish from now on, but
    /// for what is higher than `mostHeight`, in Qt's points without the chrome's margins. Of these
    /// margins it has no more than `roomAround` answers: the rest is cut off.
    void fit(int mostHeight, RoomAround roomAround = nullptr);
    /// How far its ground is from its edges.
    [[nodiscard]] QMargins margins() const { return margins_; }
    /// Hides it and deletes it on a later turn; nobody is told of it any longer.
    void retire();

Q_SIGNALS:
    /// Its size, and the room around its ground, are what they are to be.
    void fitted();

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    /// What is beneath the shadow is pressed as if there were none: the item, before all.
    void letPressesThroughShadow();
    void refit();
    void tell(PanelDismissal why);

    PanelChrome& chrome_;
    Dismiss dismiss_;
    QWidget* const view_;
    int mostHeight_ = QWIDGETSIZE_MAX;
    RoomAround roomAround_;
    QMargins margins_;
};

} // namespace tilewright
