#pragma once

#include "GnomeCompanionFiles.h"
#include "GnomeStartList.h"

#include <FreeDesktop/BusNameOwner.h>
#include <FreeDesktop/BusSignals.h>
#include <FreeDesktop/MessageBus.h>

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

namespace tilewright {

/// This program's companion as an extension of GNOME Shell: what the shell says of it, followed by
/// the shell's signal, and the way to turn it on. One that the shell has yet to see is entered in
/// the user's list of those that run, unless the user has turned it off: it runs from the next
/// login on. Everything is asynchronous; the shell alone is heard. Main thread only.
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

    /// The bus has to outlive this. The files are looked at anew whenever the shell does not know
    /// the extension. `settingsProgram` is what the user's list is kept by.
    GnomeExtension(MessageBus& bus, GnomeCompanionFiles files, QString settingsProgram);
    ~GnomeExtension() override;

    [[nodiscard]] State state() const { return state_; }
    /// Has the shell run the extension, also where it runs none at all by the user's choice. Does
    /// nothing unless it is `off`.
    void turnOn();
    /// The extension's files.
    [[nodiscard]] const GnomeCompanionFiles& files() const { return files_; }
    /// Asks the shell anew, for what it does not tell by itself.
    void refresh();

Q_SIGNALS:
    /// `state()` has another answer than before.
    void changed();
    /// The shell says that it does not run it: whatever it has told is over.
    void stopped();

private:
    void joinBus();
    void leaveBus();
    void shellChanged();
    void stateChanged(const QDBusMessage& notice);
    void ask();
    [[nodiscard]] State stateIn(const QDBusMessage& reply) const;
    void settle(State state);

    MessageBus& bus_;
    const GnomeCompanionFiles files_;
    GnomeStartList startList_;
    std::unique_ptr<BusNameOwner> shell_;
    /// Of the shell.
    BusSignals signals_;
    /// Counts the shells, so that a late answer of a former one is told apart.
    int generation_ = 0;
    bool isAsked_ = false;
    /// Whether things have changed since the question that is on its way.
    bool isStale_ = false;
    State state_ = State::unknown;
};

} // namespace tilewright
