#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <array>
#include <csignal>
#include <memory>

namespace tilewright {

/// Turns the signals that ask a process to end (SIGTERM, SIGINT, SIGHUP) into a call from the event
/// loop, for as long as it lives; then the former handlers are back. A signal that the process was
/// started to ignore stays ignored. One at a time.
class TerminationSignals final : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

    /// Whether one has come that was turned into a call, even where that has yet to be made. Any
    /// thread.
    [[nodiscard]] static bool hasCome();

Q_SIGNALS:
    void terminationRequested();

private:
    static constexpr std::array signals_{SIGTERM, SIGINT, SIGHUP};

    std::array<int, 2> sockets_{-1, -1};
    std::array<struct sigaction, signals_.size()> formerActions_{};
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace tilewright
