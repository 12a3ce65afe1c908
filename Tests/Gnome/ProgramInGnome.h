#pragma once

#include "GnomeSession.h"

#include <ProgramInCompositor.h>
#include <algorithm>

namespace tilewright::testing {

/// The program with its companion in a session of GNOME Shell.
struct ProgramInGnome : ProgramInCompositor<GnomeSession> {
    /// Where clients begin.
    static constexpr QRect start{500, 300, 640, 420};

    /// Starts both, the program from that file.
    explicit ProgramInGnome(const QString& path = QStringLiteral(TILEWRIGHT_PROGRAM),
                            int displays = 1, CompanionAtStart companion = CompanionAtStart::runs,
                            const QString& dataFolders = {})
        : ProgramInCompositor(path, displays, companion, dataFolders)
        , program(&startProgram(path, secondConnector()))
        , path_(path) {
        item = session.waitForItem();
    }
    [[nodiscard]] QRect workArea() override { return session.workArea(); }
    [[nodiscard]] int unitsPerPoint(QPoint at) override { return session.unitsPerPoint(at); }
    /// Ends the program and starts it with another snap modifier.
    void startAgainWith(const char* modifier) {
        program->signal(SIGTERM);
        EXPECT_TRUE(program->waitForEnd());
        EXPECT_TRUE(waitUntil([&] { return session.item().isEmpty(); })) << session.describe();
        writeFile(session.home() + QStringLiteral("/.config/Tilewright/Tilewright.conf"),
                  QByteArray("[General]\nsnapActivationModifier=") + modifier + "\n");
        program = &startProgram(path_, secondConnector());
        item = session.waitForItem();
    }
    /// Whether the panel is to the unit, its shadow left out, below the item or, where the work
    /// area ends, as near to that as it goes.
    void expectPanelBelowItem() {
        item = session.waitForItem();
        const int unit = unitsPerPoint(item.center());
        const QRect area = session.workArea(session.primary());
        const QRect ground = panelGround(area.top());
        const int gap = panelGap * unit;
        const int width = panelWidth * unit;
        const double left = std::clamp<double>(QRectF(item).center().x() - width / 2.0,
                                               area.left() + gap, area.right() + 1 - gap - width);
        EXPECT_EQ(ground.width(), width);
        EXPECT_NEAR(ground.left(), left, 0.5);
        EXPECT_EQ(ground.top(), item.bottom() + 1 + gap);
    }
    void clickItem() {
        // With the first input the shell may show a mark of it in the bar, and the item moves
        // aside.
        session.input().move(item.center());
        item = session.waitForItem();
        session.input().move(item.center());
        session.input().click();
    }
    /// Clicks the item and waits for the panel.
    void openPanel() override {
        clickItem();
        ASSERT_TRUE(waitUntil([&] { return isPanelReady(); })) << session.describe();
    }
    [[nodiscard]] bool isInFront(const QString& title) override {
        return session.ask(QStringLiteral("global.display.focus_window?.get_title()")).toString() ==
               title;
    }
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

    Subprocess* program;
    QRect item;

private:
    [[nodiscard]] static QString secondConnector() { return QStringLiteral("Meta-1"); }

    const QString path_;
};

} // namespace tilewright::testing
