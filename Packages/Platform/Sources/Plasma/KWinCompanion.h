#pragma once

#include <FreeDesktop/BusNameOwner.h>
#include <FreeDesktop/BusSignals.h>
#include <FreeDesktop/MessageBus.h>

#include <QByteArray>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QTemporaryFile>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace tilewright {

/// The companion inside KWin, a script that this program brings along: handed to every KWin that
/// comes, and taken back with this object. Nothing is installed, nothing waits. Main thread only.
class KWinCompanion final : public QObject {
    Q_OBJECT

public:
    enum class State {
        /// KWin is not there, or has not answered yet.
        unknown,
        /// KWin has taken it.
        loaded,
        /// KWin has not taken it, or it could not be written out.
        refused,
    };

    /// The name on the bus whose owner is KWin.
    [[nodiscard]] static QString compositorName();
    /// By this name KWin knows the script.
    [[nodiscard]] static QString scriptName();
    /// The effects that show the keys where KWin tells nobody else of them.
    [[nodiscard]] static QStringList keyEffects();

    /// `folder` is where scripts are written for KWin to read; nobody else may write there. The bus
    /// has to outlive this.
    explicit KWinCompanion(MessageBus& bus, QString folder = runtimeFolder());
    ~KWinCompanion() override;

    [[nodiscard]] State state() const { return state_; }
    /// Has a script of its own carry out what the companion is to do, as the text of an answer.
    /// Without a KWin nobody does.
    void carry(const QString& commands);
    /// Hands KWin the companion anew, which looks for what it has missed.
    void reload();

Q_SIGNALS:
    /// `state()` has another answer than before.
    void changed();

private:
    [[nodiscard]] static QString runtimeFolder();
    void joinBus();
    void compositingToggled(const QDBusMessage& notice);
    void leaveBus();
    void settle(State state);
    /// `then(true)` once KWin has been told to run it.
    void start(const QString& name, const QByteArray& lastLine, std::function<void(bool)> then);
    void load(const QString& name, const QString& path, std::function<void(bool)> then);
    [[nodiscard]] QString write(const QByteArray& lastLine);

    MessageBus& bus_;
    const QString folder_;
    std::unique_ptr<BusNameOwner> kwin_;
    BusSignals compositing_;
    /// Those written last: KWin reads a script a little after it was told to run it.
    std::deque<std::unique_ptr<QTemporaryFile>> files_;
    int errands_ = 0;
    State state_ = State::unknown;
    /// The KWin that has not answered yet to one that it is being handed.
    std::optional<QString> onItsWayTo_;
    /// Whether that one is to be handed another when it has.
    bool isStale_ = false;
};

} // namespace tilewright
