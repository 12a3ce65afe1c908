#include "ObservableObject.h"

#include "Platform.h"

namespace tilewright {

ObservableObject::~ObservableObject() = default;

Refresh::Refresh(std::function<void()> action, QObject* parent)
    : QObject(parent)
    , call_(Platform::current().mainLoop, std::move(action)) {}

Refresh::~Refresh() = default;

void Refresh::observe(const ObservableObject& object) {
    connect(&object, &ObservableObject::objectWillChange, this, &Refresh::schedule);
}

void Refresh::schedule() {
    call_.post();
}

} // namespace tilewright
