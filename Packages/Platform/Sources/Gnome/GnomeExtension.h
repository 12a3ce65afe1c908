#pragma once

#include <FreeDesktop/BusNameOwner.h>
#include <FreeDesktop/MessageBus.h>

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

class QDBusPendingCallWatcher;

namespace tilewright {

/// This program's companion as an extension of GNOME Shell: what the shell says of it, followed by
/// the shell's signal, and the way to turn it on. Everything is asynchronous; the shell alone is
/// heard. Main thread only.
class GnomeExtension final : public QObject {
    Q_OBJECT

public:
    enum class State {
        /// The shell has not said anything yet, or is not there.
        unknown,
        /// Its files are nowhere.
        notInstalled,
        /// Its files are there; the shell looks for such at its start only.
        notSeen,
        /// The shell knows it, and does not run it.
        off,
        /// The shell cannot run it: it is of another version, or has failed.
        refused,
        active,
    };

    /// The name on the bus whose owner is the shell.
    [[nodiscard]] static QString shellName();
    /// By these names the shell knows it, the one that packages install first.
    [[nodiscard]] static QStringList names();
    /// Where the shell looks for extensions, the user's own first.
    [[nodiscard]] static QStringList installedFolders();

    /// The bus has to outlive this. `folders` are looked at anew whenever the shell does not know
    /// the extension.
    explicit GnomeExtension(MessageBus& bus, QStringList folders = installedFolders());
    ~GnomeExtension() override;

    [[nodiscard]] State state() const { return state_; }
    /// Has the shell run the extension, also where it runs none at all by the user's choice. Does
    /// nothing unless it is `off`.
    void turnOn();
    /// Asks the shell anew, for what it does not tell by itself.
    void refresh();

Q_SIGNALS:
    /// `state()` has another answer than before.
    void changed();
    /// The shell ran it and does not any longer.
    void stopped();

private Q_SLOTS:
    void stateChanged(const QDBusMessage& notice);

private:
    void joinBus();
    void leaveBus();
    void shellChanged();
    void listenTo(const QString& shell);
    void askForAll();
    void ask(const QString& name);
    void take(const QString& name, const QDBusMessage& reply);
    void settle();
    [[nodiscard]] State stateOfFiles() const;
    void call(const QDBusMessage& message, std::function<void(const QDBusMessage&)> then);

    MessageBus& bus_;
    const QStringList folders_;
    std::unique_ptr<BusNameOwner> shell_;
    /// The shell's own address, whose signals are listened to; empty while there is none.
    QString heard_;
    /// Counts the shells, so that a late answer of a former one is told apart.
    int generation_ = 0;
    /// How many answers are on their way, and whether things have changed since they were asked
    /// for.
    int awaited_ = 0;
    bool isStale_ = false;
    /// The best of what the names stand for, while answers come in; then as it is.
    State found_ = State::unknown;
    /// The name that is to be turned on.
    QString known_;
    State state_ = State::unknown;
};

} // namespace tilewright
