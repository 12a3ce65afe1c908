#pragma once

#include "FakeProgram.h"
#include "GnomeSession.h"

#include <QCoreApplication>
#include <Waiting.h>
#include <gtest/gtest.h>

namespace tilewright::testing {

/// A session whose companion talks to this test instead of to the program.
struct CompanionTest : ::testing::Test {
    /// Two zones of the display below the bar, in the stage's units.
    static constexpr QRect leftZone{8, 40, 944, 1032};
    static constexpr QRect rightZone{968, 40, 944, 1032};
    /// Where clients begin.
    static constexpr QRect start{500, 300, 640, 420};
    /// Where the ground lies bare under the left zone's tile, and in its border.
    static constexpr QPoint inLeftTile{100, 1000};
    static constexpr QPoint onLeftBorder{9, 1000};
    static constexpr QPoint inRightTile{1500, 1000};

    /// Takes the program's name, and waits until the companion listens.
    void greet() {
        program = std::make_unique<FakeProgram>(session.busAddress());
        ASSERT_TRUE(program->waitFor(QStringLiteral("Hello"))) << session.describe();
        ASSERT_TRUE(waitUntil([&] { return program->isListenedTo(); })) << session.describe();
    }

    /// The command that shows both zones, the one at this index highlighted; -1 for none.
    [[nodiscard]] static QJsonObject overlay(int highlighted, int transition = 0);
    /// Answers drags as the program does: with Control the overlay, and on the drop the frame of
    /// the zone under the pointer.
    void snapWithControl();
    /// Drags a client with Control, and waits until the left zone is seen to be highlighted.
    void dragToLeftZone(const QString& title);

    [[nodiscard]] bool isHighlighted(QPoint at) { return isNear(session.pixel(at), highlighted); }
    [[nodiscard]] bool isBare(QPoint at) { return isNear(session.pixel(at), ground); }
    /// The same up to rounding.
    [[nodiscard]] static bool isNear(QColor one, QColor other);
    /// Whether that window has the focus.
    [[nodiscard]] bool isInFront(const QString& title);
    /// How many things lie on the shell's stage that may be ours.
    [[nodiscard]] int actorsOnStage();
    [[nodiscard]] bool hasItem() { return !session.item().isEmpty(); }

    GnomeSession session{QCoreApplication::applicationFilePath()};
    std::unique_ptr<FakeProgram> program;

    static const QColor ground;
    /// What the tiles' fills come to on the ground, and the highlighted border.
    static const QColor plain;
    static const QColor highlighted;
    static const QColor border;
};

} // namespace tilewright::testing
