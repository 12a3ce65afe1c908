#pragma once

#include "PanelWindow.h"

#include <Platform/Lifetime.h>

#include <vector>

namespace tilewright {

/// The panel as a popup of Qt's that the program itself places, and that grabs hold the keyboard
/// and the pointer for. Presses are heard of twice: by Qt, once the grabs are granted, and by one
/// watch of the event monitors. Main thread only.
class PopupPanelSurface final : public PanelSurface {
    Q_OBJECT

public:
    /// Calls back from the event loop once the event monitors have been told of all input that
    /// happened before the call: monitors added then hear only of what is newer.
    using InputBarrier = std::function<void(std::function<void()> then)>;

    /// The services, and whatever the barrier needs, have to outlive the surface.
    PopupPanelSurface(const PlatformServices& services, InputBarrier barrier, ViewFactory makeView,
                      std::unique_ptr<PanelChrome> chrome);
    ~PopupPanelSurface() override;

    void open(const Anchor& anchor) override;
    void close() override;
    void toggle(const Anchor& item) override;
    [[nodiscard]] bool isOpen() const override { return window_.isVisible(); }

    /// The one window that serves every opening.
    [[nodiscard]] PanelWindow& window() { return window_; }

private:
    /// What is known of the latest press, as far as it concerns the open panel. A host may pass a
    /// press that dismisses the panel on as a click on the item, and that click must not open it
    /// again.
    enum class Press {
        none,
        /// It dismissed the panel on the item, but the monitors have not told of it yet.
        awaitedOnItem,
        downOnItem,
        releasedOnItem,
        elsewhere,
    };
    /// To whose windows the event monitors take an event to be sent.
    enum class Receiver { others, own };

    void openBeside(const Anchor& item);
    void dismiss(PanelDismissal why);
    void windowHidden();
    void watchPresses();
    void handle(const Event& event, Receiver receiver);
    void pressedWhileClosed();
    void awaitClickOfPress();
    void forgetPress();
    /// Whether a click that the host passes on now may be the press that dismissed the panel.
    [[nodiscard]] bool isPressOnItem() const;
    [[nodiscard]] bool isPointerOnItem() const;

    const PlatformServices services_;
    InputBarrier barrier_;
    ViewFactory makeView_;
    PanelWindow window_;
    /// What `dismissed` will tell.
    PanelDismissal why_ = PanelDismissal::desktop;
    /// Where the item was clicked last: its place, empty where its host tells none, and the pointer
    /// then.
    AppKitRect itemPlace_;
    AppKitPoint itemPointer_;
    Press press_ = Press::none;
    ScopedTimer pressTimer_;
    std::vector<MonitorToken> monitors_;
    /// From an opening to its end.
    std::optional<Lifetime> opening_;
    Lifetime life_;
};

} // namespace tilewright
