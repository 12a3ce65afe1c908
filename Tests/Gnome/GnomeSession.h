#pragma once

#include "GnomeInput.h"

#include <CompositorSession.h>
#include <QDBusMessage>
#include <vector>

namespace tilewright::testing {

/// Whether our companion's files are there, and the companion is to run, before the shell starts:
/// of this build, or as a package has installed it in the folder that is the session's system.
enum class CompanionAtStart { runs, isPackaged, isNowhere };

/// Where a display is, and with how many of its pixels along each point.
struct GnomeDisplay {
    QPoint place;
    double scale = 1;
};

/// A whole session of GNOME Shell, with our companion installed for its home. Places are units of
/// the shell's stage.
class GnomeSession final : public CompositorSession {
public:
    /// Starts it, with a companion that believes the program at this path, and waits until the
    /// shell rests. Throws where none comes up, which ends the running test. The displays are
    /// side by side, each of 1920 by 1080 pixels.
    /// `dataFolders` is where data of the system is found; empty for the machine's own.
    explicit GnomeSession(const QString& believedProgram, int displays = 1,
                          CompanionAtStart companion = CompanionAtStart::runs,
                          const QString& dataFolders = {});

    /// Puts the companion's files where the shell finds them at its next start.
    void installCompanion(const QString& believedProgram);
    /// Ends the shell, and everything that was shown by it, and starts another for the same user.
    void logInAgain();

    /// What the script's last expression comes to.
    [[nodiscard]] QJsonValue ask(const QString& script) override;

    [[nodiscard]] QRect frame(const QString& title) override;
    void place(const QString& title, QRect area) override;
    void waitUntilShown() override;
    [[nodiscard]] bool isDragging() override;
    [[nodiscard]] QImage picture() override;
    /// What is free of bars of the display that begins there.
    [[nodiscard]] QRect workArea(QPoint display = {});
    /// Where the display with the bar begins.
    [[nodiscard]] QPoint primary();
    /// How many units lie along a point at a place: more than one where the stage has the display's
    /// pixels.
    [[nodiscard]] int unitsPerPoint(QPoint at) const;
    /// Arranges the displays so, as the user would, one of them as the primary, which has the bar,
    /// and waits for it. Nothing may lie in the lower right corner of a display.
    void arrange(const std::vector<GnomeDisplay>& displays, std::size_t primaryIndex = 0);
    /// Has the shell offer its displays scales between the whole ones, too, as the user would, and
    /// waits for it.
    void offerFractionalScales();
    /// Which scales the shell offers for its displays.
    [[nodiscard]] std::vector<double> offeredScales();

    /// Starts the session manager, with nothing to manage, and waits for it.
    void startSessionManager();
    /// Whether somebody keeps it from letting the session go idle.
    [[nodiscard]] bool isKeptAwake() const;

    /// Switches the companion on or off, as the user would.
    void setCompanionEnabled(bool enabled);
    /// Of which version is the one that the shell has; empty where it has none.
    [[nodiscard]] QString companionVersion();
    /// As the lock screen does: the shell switches extensions off.
    void lock();
    void unlock();
    /// Whether the shell has it running.
    [[nodiscard]] bool isCompanionActive();

    /// The same mouse and keyboard as input().
    [[nodiscard]] GnomeInput& hands() { return *input_; }
    /// Puts a finger on the screen there, and lifts it again.
    void tapScreen(QPoint at);

    /// Where our button is in the bar; empty while it is not there.
    [[nodiscard]] QRect item();
    /// Waits until it is there, and has come to rest in the bar's right half.
    [[nodiscard]] QRect waitForItem();

private:
    void writeSettings(bool isEnabled) const;
    [[nodiscard]] QString companionFolder() const;
    [[nodiscard]] bool startShell();
    void waitUntilItRests();
    [[nodiscard]] QDBusMessage evaluate(const QString& script) const;
    /// The serial of what the shell has now, and each display with its connector, its mode and the
    /// scales it is offered.
    [[nodiscard]] QJsonValue displayState();
    /// Asks the shell to arrange the displays so, and says why it did not; empty where it did.
    [[nodiscard]] QString refusalToArrange(const std::vector<GnomeDisplay>& displays,
                                           std::size_t primaryIndex);
    [[nodiscard]] std::map<QString, QString> xServer() override;

    const int displays_;
    /// The extension's name.
    const QString uuid_;
    /// Which the base owns.
    GnomeInput* input_ = nullptr;
    int pictures_ = 0;
    /// The displays' frames, and the units along a point of each, where these are not one.
    std::vector<std::pair<QRect, int>> units_;
};

/// The extension that a build brings along, and the one that a package has.
inline constexpr char companionUuid[] = "tilewright-run@tilewright.org";
inline constexpr char packagedUuid[] = "tilewright@tilewright.org";

} // namespace tilewright::testing
