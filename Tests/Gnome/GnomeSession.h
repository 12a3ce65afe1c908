#pragma once

#include <CompositorSession.h>
#include <QDBusMessage>

namespace tilewright::testing {

/// A whole session of GNOME Shell, with our companion installed for its home. Places are units of
/// the shell's stage.
class GnomeSession final : public CompositorSession {
public:
    /// Starts it, with a companion that believes the program at this path, and waits until the
    /// shell rests. Fails the running test where it does not come up.
    explicit GnomeSession(const QString& believedProgram);

    /// What the script's last expression comes to.
    [[nodiscard]] QJsonValue ask(const QString& script) override;

    [[nodiscard]] QRect frame(const QString& title) override;
    void place(const QString& title, QRect area) override;
    [[nodiscard]] bool isDragging() override;
    [[nodiscard]] QImage picture() override;

    /// Switches the companion on or off, as the user would.
    void setCompanionEnabled(bool enabled);
    /// Whether the shell has it running.
    [[nodiscard]] bool isCompanionActive();

    /// Where our button is in the bar; empty while it is not there.
    [[nodiscard]] QRect item();
    /// Waits until it is there, and has come to rest in the bar's right half.
    [[nodiscard]] QRect waitForItem();

private:
    void writeSettings() const;
    void installCompanion(const QString& believedProgram);
    [[nodiscard]] bool startShell();
    void waitUntilItRests();
    [[nodiscard]] QDBusMessage evaluate(const QString& script) const;
    [[nodiscard]] std::map<QString, QString> xServer() override;

    int pictures_ = 0;
};

/// The extension that a build brings along.
inline constexpr char companionUuid[] = "tilewright-run@tilewright.org";

} // namespace tilewright::testing
