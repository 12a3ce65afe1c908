#pragma once

#include "MainLoop.h"

#include <QObject>

namespace tilewright {

/// Qt's event loop as a `MainLoop`, the same on every desktop. Needs a QCoreApplication for
/// anything to fire. Tasks still pending when it is destroyed are dropped.
class QtMainLoop final : public MainLoop {
public:
    QtMainLoop();
    ~QtMainLoop() override;

    void post(Task task) override;
    std::shared_ptr<Timer> scheduleOnce(Interval interval, Task task) override;
    std::shared_ptr<Timer> scheduleRepeating(Interval interval, Task task) override;
    [[nodiscard]] Interval now() const override;

private:
    QObject context_;
};

} // namespace tilewright
