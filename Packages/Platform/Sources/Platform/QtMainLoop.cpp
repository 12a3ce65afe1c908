#include "QtMainLoop.h"

#include <QPointer>
#include <QTimer>

namespace tilewright {

namespace {

class QtTimer final : public Timer {
public:
    explicit QtTimer(QTimer* timer)
        : timer_(timer) {}

    void invalidate() override {
        if (timer_) {
            timer_->stop();
            // The task may be what calls us: it has to outlive this call.
            timer_->deleteLater();
            timer_.clear();
        }
    }

    bool isValid() const override { return timer_ && timer_->isActive(); }

private:
    QPointer<QTimer> timer_;
};

} // namespace

Timer::~Timer() = default;

QtMainLoop::QtMainLoop() = default;
QtMainLoop::~QtMainLoop() = default;

void QtMainLoop::post(Task task) {
    QMetaObject::invokeMethod(&context_, std::move(task), Qt::QueuedConnection);
}

std::shared_ptr<Timer> QtMainLoop::scheduleOnce(Interval interval, Task task) {
    auto* timer = new QTimer(&context_);
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, task = std::move(task)] {
        timer->deleteLater();
        task();
    });
    timer->start(interval);
    return std::make_shared<QtTimer>(timer);
}

std::shared_ptr<Timer> QtMainLoop::scheduleRepeating(Interval interval, Task task) {
    auto* timer = new QTimer(&context_);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, timer, std::move(task));
    timer->start(interval);
    return std::make_shared<QtTimer>(timer);
}

MainLoop::Interval QtMainLoop::now() const {
    return std::chrono::duration_cast<Interval>(
        std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace tilewright
