#include "ObservableObject.h"

#include "Platform.h"

#include <QPointer>

namespace tilewright {

ObservableObject::~ObservableObject() = default;

Refresh::Refresh(std::function<void()> action, QObject* parent)
    : QObject(parent)
    , action_(std::move(action)) {}

Refresh::~Refresh() = default;

void Refresh::observe(const ObservableObject& object) {
    connect(&object, &ObservableObject::objectWillChange, this, &Refresh::schedule);
}

void Refresh::schedule() {
    if (isScheduled_)
        return;
    isScheduled_ = true;
    Platform::current().mainLoop.post([self = QPointer<Refresh>(this)] {
        if (!self)
            return;
        self->isScheduled_ = false;
        self->action_();
    });
}

} // namespace tilewright
