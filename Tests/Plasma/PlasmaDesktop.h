#pragma once

#include "PlasmaSession.h"

namespace tilewright::testing {

/// What Plasma has around KWin: its desktop with the panel below, and what watches over idling. In
/// a session that has room for them.
class PlasmaDesktop {
public:
    /// What its panel is to windows: it takes room from them, or lies above them.
    enum class Panel { besideWindows, aboveWindows };

    /// Starts it and waits until the panel shows what it shows at first. Fails the running test
    /// where it does not come up.
    explicit PlasmaDesktop(PlasmaSession& session, Panel panel = Panel::besideWindows);

    /// Where the tray shows an item that has come since, by its middle; null where none has. What
    /// has to move for it stands further right.
    [[nodiscard]] std::optional<QPoint> newItem() const;
    /// Whether somebody keeps the display awake, as Plasma tells everybody who asks.
    [[nodiscard]] bool isKeptAwake() const;
    /// Has the user choose what the panel does about windows, as Plasma's scripts call it. Answers
    /// what Plasma has then.
    QString setPanelHiding(const QString& how);
    /// Plasma's panel, with what it leaves bare around itself.
    [[nodiscard]] QRect panel() const;
    /// What a maximized window would fill.
    [[nodiscard]] QRect workArea() const;

private:
    void start(const QString& program, const char* service);
    [[nodiscard]] bool isOnBus(const char* service) const;
    /// What the panel looks like, but for what changes by itself.
    [[nodiscard]] QImage tray() const;

    PlasmaSession& session_;
    QImage first_;
};

} // namespace tilewright::testing
