#pragma once

#include "PostedCall.h"

#include <QObject>
#include <functional>
#include <utility>

namespace tilewright {

/// An object whose published properties can be observed. Main thread only.
///
/// `objectWillChange` is sent before each assignment to a published property, also one that
/// assigns the value it already has. It carries nothing: observers read the object again, on the
/// next turn of the event loop (see `Refresh`).
class ObservableObject : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~ObservableObject() override;

Q_SIGNALS:
    void objectWillChange();
};

/// A published property of an `ObservableObject`: every assignment is announced before it happens.
template<class T>
class Published {
public:
    Published(ObservableObject& owner, T initial)
        : owner_(owner)
        , value_(std::move(initial)) {}
    Published(const Published&) = delete;

    [[nodiscard]] const T& value() const { return value_; }
    Published& operator=(T value) {
        Q_EMIT owner_.objectWillChange();
        value_ = std::move(value);
        return *this;
    }

private:
    ObservableObject& owner_;
    T value_;
};

/// Merges announcements into one call on the next turn of the event loop.
///
/// The call runs through the installed platform's `MainLoop`. It is dropped when the `Refresh` is
/// destroyed first. The observed objects may go before it.
class Refresh : public QObject {
    Q_OBJECT

public:
    /// `action` re-reads and redraws.
    explicit Refresh(std::function<void()> action, QObject* parent = nullptr);
    ~Refresh() override;

    /// Refreshes after each change of the object from now on.
    void observe(const ObservableObject& object);
    /// Asks for a refresh on the next turn, as a change of an observed object does.
    void schedule();

private:
    PostedCall call_;
};

} // namespace tilewright
