#pragma once

#include <QWidget>
#include <functional>
#include <memory>

namespace tilewright {

/// The settings window: an ordinary window around its content, whose size it takes and keeps.
class SettingsWindow final : public QWidget {
    Q_OBJECT

public:
    explicit SettingsWindow(std::unique_ptr<QWidget> view);
    ~SettingsWindow() override;

    /// Shows the window in front of every other one, focused, and whole where a part of it is on no
    /// display any more.
    void bringForward();

Q_SIGNALS:
    /// The window has gone from the screen; a new one is made for the next opening.
    void closed();

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void moveIntoView();

    bool wantsActivation_ = false;
};

/// The settings scene: at most one window, whose content is made when it opens and destroyed when
/// it closes. Main thread only.
class SettingsScene final : public QObject {
    Q_OBJECT

public:
    using ViewFactory = std::function<std::unique_ptr<QWidget>()>;

    explicit SettingsScene(ViewFactory makeView);
    ~SettingsScene() override;

    /// Opens the window, or brings the open one forward from wherever it is: minimised, on another
    /// desktop, behind others.
    void open();
    /// The open window; null when there is none.
    [[nodiscard]] SettingsWindow* window() const { return window_.get(); }

private:
    ViewFactory makeView_;
    std::unique_ptr<SettingsWindow> window_;
};

} // namespace tilewright
