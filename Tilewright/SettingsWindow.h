#pragma once

#include <Platform/ObservableObject.h>

#include <QWidget>
#include <functional>
#include <memory>

class QScreen;

namespace tilewright {

/// What the settings window shows. It has one size, but for what a low display asks of it.
class SettingsContent : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Has it take this height at most, in points; what does not fit then scrolls.
    virtual void limitHeight(int most) = 0;
};

/// The settings window: an ordinary window around its content, whose size it takes. It follows the
/// displays: on a low one its content scrolls, and it comes back from one that goes.
class SettingsWindow final : public QWidget {
    Q_OBJECT

public:
    explicit SettingsWindow(std::unique_ptr<SettingsContent> content);
    ~SettingsWindow() override;

    /// Shows the window in front of every other one, focused, and whole where a part of it is on no
    /// display any more.
    void bringForward();

Q_SIGNALS:
    /// The window has gone from the screen; a new one is made for the next opening.
    void closed();

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void follow(const QScreen& screen);
    void fitToDisplay();
    void moveIntoView();

    SettingsContent* content_;
    Refresh displaysChanged_;
    bool wantsActivation_ = false;
};

/// The settings scene: at most one window, whose content is made when it opens and destroyed when
/// it closes. Main thread only.
class SettingsScene final : public QObject {
    Q_OBJECT

public:
    using ViewFactory = std::function<std::unique_ptr<SettingsContent>()>;

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
