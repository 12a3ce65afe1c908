#include "ObservableObject.h"

#include "Platform.h"

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
    Platform::current().mainLoop.post(life_.guard([this] {
        isScheduled_ = false;
        action_();
    }));
}

} // namespace tilewright
