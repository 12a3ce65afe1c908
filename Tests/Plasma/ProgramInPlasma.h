#pragma once

#include "PlasmaSession.h"

#include <ProgramInCompositor.h>

namespace tilewright::testing {

/// The program with its companion in a session of KWin.
struct ProgramInPlasma : ProgramInCompositor<PlasmaSession> {
    /// Where clients begin.
    static constexpr QRect start{600, 300, 640, 420};

    /// Starts both, the program with that modifier.
    explicit ProgramInPlasma(const char* modifier = "control", const PlasmaDisplays& displays = {})
        : ProgramInCompositor(displays) {
        writeFile(session.home() + QStringLiteral("/.config/Tilewright/Tilewright.conf"),
                  QByteArray("[General]\nsnapActivationModifier=") + modifier + "\n");
        program = &startProgram(QStringLiteral(TILEWRIGHT_PROGRAM), session.secondConnector());
        EXPECT_TRUE(waitUntil([&] { return session.hasCompanion(); })) << session.describe();
        // It greets once it has heard of the effects, which KWin tells one after the other.
        session.tell(QStringLiteral("0"));
    }
    [[nodiscard]] QRect workArea() override { return session.displays().front(); }
    [[nodiscard]] QImage pictureOf(const QRect& area) override { return session.pictureOf(area); }
    void openPanel() override {
        startAgain();
        ASSERT_TRUE(waitUntil([&] { return isPanelReady(); })) << session.describe();
    }
    [[nodiscard]] bool isInFront(const QString& title) override {
        return session.isWindow(title, QStringLiteral("active"));
    }
    /// Whether it is where it belongs: a new window is active before it is dressed as the panel.
    [[nodiscard]] bool isPanelReady() {
        return session.isWindow(panelTitle, QStringLiteral("active && w.keepAbove"));
    }

    Subprocess* program;
};

} // namespace tilewright::testing
