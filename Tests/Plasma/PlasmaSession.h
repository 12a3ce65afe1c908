#pragma once

#include "HostDisplay.h"

#include <CompositorSession.h>
#include <QDBusMessage>

namespace tilewright::testing {

/// The displays of a session, side by side.
struct PlasmaDisplays {
    enum class Seen {
        /// On an X server with KWin 6, by KWin itself with KWin 5, which paints with OpenGL then.
        anyhow,
        /// At once, as it takes to measure time. KWin 5 has one display then.
        onXServer,
    };

    /// How many pixels lie along a unit of KWin's, of each display.
    std::vector<double> scales{1};
    /// How many pixels each of them has.
    QSize pixels{1920, 1080};
    Seen seen = Seen::anyhow;
    /// Which one the user has made the primary one.
    std::size_t primary = 0;
};

/// A session of KWin, with what it takes to see the keys installed for its home: effects for KWin
/// 5, an entry for newer ones. Places are KWin's units.
class PlasmaSession final : public CompositorSession {
public:
    /// What is there beside KWin: nothing, not even its own screen locker; or what Plasma starts.
    enum class Around { nothing, desktop };

    /// Starts it and waits until it can be used. Fails the running test where it does not come up.
    explicit PlasmaSession(const PlasmaDisplays& displays = {}, Around around = Around::nothing);
    ~PlasmaSession() override;

    /// What an expression comes to. There, `find(title)` is a window, and `all()` are all of them.
    [[nodiscard]] QJsonValue ask(const QString& expression) override;
    /// Has KWin run a script, which says `answer(value)` some time.
    [[nodiscard]] QString begin(const QString& script);
    /// What that one answers. Ends it.
    [[nodiscard]] QJsonValue answerTo(const QString& script);

    [[nodiscard]] QRect frame(const QString& title) override;
    /// That of the window that an expression comes to; empty where it comes to none.
    [[nodiscard]] QRect frameOf(const QString& window);
    void place(const QString& title, QRect area) override;
    /// Whether KWin says that of a window, such as "keepAbove".
    [[nodiscard]] bool isWindow(const QString& title, const QString& property);
    [[nodiscard]] bool isDragging() override;
    /// Whether KWin has the script.
    [[nodiscard]] bool hasScript(const QString& name);
    /// Whether it has one that does an errand of the program's, of the first twenty.
    [[nodiscard]] bool hasErrand();
    /// Whether it runs, and sees the keys.
    [[nodiscard]] bool hasCompanion();
    /// What the first display looks like.
    [[nodiscard]] QImage picture() override { return pictureOf(0); }
    /// What that part of a display looks like, whichever one it is on.
    [[nodiscard]] QImage pictureOf(const QRect& area);
    [[nodiscard]] QColor pixel(QPoint at) override;
    /// The frames of the displays at the beginning, the first the primary one.
    [[nodiscard]] const std::vector<QRect>& displays() const { return displays_; }
    /// Those that KWin has now, after whatever was done to them.
    [[nodiscard]] std::vector<QRect> currentDisplays();

    /// Has KWin do that to the second display, by Plasma's own tool, which calls it so, and waits
    /// until it is done.
    void changeSecondDisplay(const QString& what, const std::function<bool()>& isDone);

    /// How far a frame may be from what was asked for: KWin 6 and its clients make sizes whole
    /// pixels, each of the parts of a window by itself.
    [[nodiscard]] int roundOff() const {
        return isKwin6_ && scales_.back() != int(scales_.back()) ? 1 : 0;
    }
    /// Plasma's, and KWin's.
    [[nodiscard]] int generation() const { return isKwin6_ ? 6 : 5; }
    /// What KWin calls the connector of the second one.
    [[nodiscard]] QString secondConnector() const {
        return isKwin6_ ? QStringLiteral("X11-1") : QStringLiteral("Virtual-1");
    }

    /// Where KWin listens.
    [[nodiscard]] QString socketPath() const {
        return home() + QStringLiteral("/run/") + socketName();
    }
    [[nodiscard]] pid_t kwinPid() { return compositor().pid(); }
    /// Ends KWin at once, as when it crashes, and starts it again at the same socket.
    void killCompositor();
    void startCompositor();

private:
    class Ear;

    void installFiles(std::size_t primary) const;
    void installEffects() const;
    void installEntries() const;
    /// By the place of a display among the others.
    [[nodiscard]] std::size_t displayAt(QPoint at) const;
    [[nodiscard]] QImage pictureOf(std::size_t display);
    /// As KWin itself makes it, which KWin 6 does only with a graphics card.
    [[nodiscard]] QImage screenshot(const QRect& area);
    [[nodiscard]] QDBusMessage callScripting(const QString& method,
                                             const QVariantList& arguments = {});
    [[nodiscard]] std::map<QString, QString> xServer() override;

    const bool isKwin6_;
    const std::vector<double> scales_;
    const QSize pixels_;
    const Around around_;
    std::vector<QRect> displays_;
    /// Null where KWin paints without a host.
    std::unique_ptr<HostDisplay> host_;
    std::unique_ptr<Ear> ear_;
    int questions_ = 0;
};

} // namespace tilewright::testing
