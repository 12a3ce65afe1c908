#pragma once

#include "GnomeSession.h"

#include <ProgramInCompositor.h>

namespace tilewright::testing {

/// The program with its companion in a session of GNOME Shell.
struct ProgramInGnome : ProgramInCompositor<GnomeSession> {
    /// Where clients begin.
    static constexpr QRect start{500, 300, 640, 420};

    /// Starts both, the program from that file.
    explicit ProgramInGnome(const QString& path = QStringLiteral(TILEWRIGHT_PROGRAM),
                            int displays = 1)
        : ProgramInCompositor(path, displays)
        , program(startProgram(path, QStringLiteral("Meta-1"))) {
        item = session.waitForItem();
    }
    [[nodiscard]] QRect workArea() override { return session.workArea(0); }
    [[nodiscard]] int unitsPerPoint() override { return session.unitsPerPoint(); }
    void clickItem() {
        session.input().move(item.center());
        session.input().click();
    }
    [[nodiscard]] bool isPanelOpen() { return !session.frame(panelTitle).isEmpty(); }
    /// What the shell says of the panel's window.
    [[nodiscard]] bool panelIs(const QString& property) {
        return session
            .ask(QStringLiteral("global.get_window_actors().map(a => a.meta_window)"
                                ".some(w => w.get_title() === 'Tilewright' && w.%1)")
                     .arg(property))
            .toBool();
    }

    /// Whether it is where it belongs: the shell gives a new window the focus before that.
    [[nodiscard]] bool isPanelReady() {
        return panelIs(QStringLiteral("is_above() && w.has_focus()"));
    }

    Subprocess& program;
    QRect item;
};

} // namespace tilewright::testing
