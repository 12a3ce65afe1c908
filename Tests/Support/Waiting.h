#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QThread>
#include <chrono>

namespace tilewright::testing {

/// How long a condition may take before a test gives up: far longer than it ever should, since
/// the machine may be busy.
inline constexpr std::chrono::seconds patience{20};

/// Turns the event loop until the condition holds; false when it still does not at the deadline.
template<class Condition>
[[nodiscard]] bool waitUntil(Condition condition, std::chrono::milliseconds deadline = patience) {
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        if (QCoreApplication::instance())
            QCoreApplication::processEvents(QEventLoop::AllEvents);
        if (condition())
            return true;
        if (timer.elapsed() > deadline.count())
            return false;
        // The condition is about another process: look again shortly.
        QThread::msleep(2);
    }
}

/// Whether the condition goes on holding while the event loop turns for the duration. For what must
/// not happen: a test should first wait for something that comes after it.
template<class Condition>
[[nodiscard]] bool staysTrue(Condition condition, std::chrono::milliseconds duration) {
    return !waitUntil([&] { return !condition(); }, duration);
}

} // namespace tilewright::testing
