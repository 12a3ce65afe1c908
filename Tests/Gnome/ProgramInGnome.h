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
    void clickItem() {
        session.input().move(item.center());
        session.input().click();
    }
    /// Clicks the item and waits for the panel.
    void openPanel() {
        clickItem();
        ASSERT_TRUE(waitUntil([&] { return isPanelReady(); })) << session.describe();
    }
    /// Opens the settings, or brings them forward, from the panel.
    void openSettings() {
        openPanel();
        session.input().move(settingsInPanel());
        session.input().click();
        EXPECT_TRUE(waitUntil([&] { return !isPanelOpen(); }));
        EXPECT_TRUE(waitUntil([&] { return isInFront(settingsTitle); })) << session.describe();
    }
    /// Where the open panel has the word that leads to the settings: in its lower left corner.
    [[nodiscard]] QPoint settingsInPanel() {
        return session.frame(panelTitle).bottomLeft() + QPoint(60, -45);
    }
    /// Where the panel's large picture of a layout has the zone in the upper left corner. Fails the
    /// test where the open panel has none.
    [[nodiscard]] QPoint firstZoneInPanel() {
        // The shadow, and what lies to the right of that picture's corner, left out.
        const QRect frame = session.frame(panelTitle).adjusted(30, 30, -200, 0);
        const auto isAmber = [](QColor colour) {
            return colour.red() - colour.blue() > 60 && colour.red() > colour.green();
        };
        std::optional<QPoint> corner;
        EXPECT_TRUE(waitUntil([&] {
            const QImage picture = session.picture();
            for (int y = frame.top(); y < frame.bottom() && !corner; ++y) {
                for (int x = frame.left(); x < frame.right() && !corner; ++x) {
                    if (isAmber(picture.pixelColor(x, y)))
                        corner = QPoint(x, y);
                }
            }
            return corner.has_value();
        })) << session.describe();
        return corner.value_or(QPoint()) + QPoint(30, 30);
    }
    [[nodiscard]] bool isInFront(const QString& title) {
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
    const QString settingsTitle = QStringLiteral("Tilewright Settings");

private:
    [[nodiscard]] static QString secondConnector() { return QStringLiteral("Meta-1"); }

    const QString path_;
};

} // namespace tilewright::testing
