#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace tilewright {

/// Owns one reference to a Core Foundation object, or none, and releases it on every path.
///
/// The result of a function with Create or Copy in its name goes into `adopt` at once; one that is
/// only borrowed goes into `retain`.
template<class Ref>
class CFOwner {
public:
    CFOwner() = default;
    CFOwner(const CFOwner& other)
        : object_(other.object_) {
        if (object_)
            CFRetain(object_);
    }
    CFOwner(CFOwner&& other) noexcept
        : object_(std::exchange(other.object_, nullptr)) {}
    CFOwner& operator=(CFOwner other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~CFOwner() {
        if (object_)
            CFRelease(object_);
    }

    /// Takes over a reference that the caller owns; null is none.
    [[nodiscard]] static CFOwner adopt(Ref object) { return CFOwner(object); }
    /// Adds a reference to an object that somebody else owns; null is none.
    [[nodiscard]] static CFOwner retain(Ref object) {
        if (object)
            CFRetain(object);
        return CFOwner(object);
    }

    [[nodiscard]] Ref get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    explicit CFOwner(Ref object)
        : object_(object) {}

    Ref object_ = nullptr;
};

} // namespace tilewright
