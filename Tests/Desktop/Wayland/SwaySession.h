#pragma once

#include "LayerSession.h"

#include <Waiting.h>

#include <QDir>
#include <gtest/gtest.h>
#include <tuple>

namespace tilewright::testing {

/// Sway without a screen: one display of 1920 by 1080 pixels, on which the window that is titled
/// "Beneath" is full-screen.
class SwaySession final : public LayerSession {
public:
    explicit SwaySession(double scale = 1, Beside beside = Beside::nothing) {
        using namespace Qt::StringLiterals;
        const bool hasX = beside == Beside::xServer;
        writeFile(configuration(),
                  u"output HEADLESS-1 mode 1920x1080 scale %1\n"
                  "xwayland %2\n"
                  "for_window [title=\"^Beneath$\"] fullscreen enable\n%3\n"_s
                      .arg(QString::number(scale), hasX ? u"enable"_s : u"disable"_s,
                           hasX ? u"exec "_s + toldXDisplay() : QString())
                      .toUtf8());
        start();
    }

    void start() {
        using namespace Qt::StringLiterals;
        startCompositor(u"sway"_s, {u"-c"_s, configuration()});
        EXPECT_TRUE(waitUntil([&] {
            const QStringList sockets = controls();
            if (!sockets.isEmpty())
                set(u"SWAYSOCK"_s, folder().filePath(sockets.front()));
            return !sockets.isEmpty();
        })) << logged();
    }
    /// Ends it as a crash does, its socket left behind, and starts another in its place.
    void replace() {
        compositor().stop();
        for (const QString& name : controls())
            QFile::remove(folder().filePath(name));
        start();
    }
    void command(const QString& words) {
        std::ignore = outputOf(QStringLiteral("swaymsg"), words.split(u' '), environment());
    }

private:
    [[nodiscard]] QString socketName() const override { return QStringLiteral("wayland-1"); }
    [[nodiscard]] QString configuration() const {
        return folder().filePath(QStringLiteral("config"));
    }
    /// The sockets by which it takes commands.
    [[nodiscard]] QStringList controls() const {
        return QDir(folder().path())
            .entryList({QStringLiteral("sway-ipc.*")}, QDir::System | QDir::Files);
    }
};

} // namespace tilewright::testing
