#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include <QString>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tilewright::testing {

/// Stands in for Core Foundation: objects with counted references.
///
/// Whatever would corrupt memory or crash on the real one ends the process with a message: a null
/// reference, a reference to what is no object, one reference released twice. What is still alive
/// at the end was leaked. Objects are never freed before `reset()`, so that an address is never
/// used for two of them.
namespace fakecf {

/// What lies behind a reference.
class Object {
public:
    Object(CFTypeID initialType, std::string initialDescription)
        : type(initialType)
        , description(std::move(initialDescription)) {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    /// Gives up the references to other objects that it holds: its last one was released.
    virtual void drop() {}
    [[nodiscard]] virtual bool equals(const Object& other) const { return this == &other; }

    const CFTypeID type;
    /// Names it in messages.
    const std::string description;
    int references = 1;
};

/// The types that exist here.
namespace TypeID {
inline constexpr CFTypeID string = 7;
inline constexpr CFTypeID dictionary = 18;
inline constexpr CFTypeID boolean = 21;
inline constexpr CFTypeID number = 22;
inline constexpr CFTypeID uuid = 40;
inline constexpr CFTypeID axElement = 41;
inline constexpr CFTypeID axValue = 42;
} // namespace TypeID

/// Registers an object with one reference, which the caller owns.
CFTypeRef adopt(std::unique_ptr<Object> object);
/// The live object behind a reference; ends the process when there is none.
Object& objectOf(CFTypeRef reference, const char* caller);
/// The same, which has to be of a type; ends the process when it is of another.
template<class T>
T& as(CFTypeRef reference, const char* caller);
/// Ends the process with a message.
[[noreturn]] void die(const std::string& message);

/// A new string, number, Boolean or dictionary, as the system itself would hand it out.
CFStringRef makeString(const QString& text);
CFNumberRef makeNumber(qint64 value);
[[nodiscard]] QString textOf(CFStringRef string);

/// Functions (by name) that answer null from now on, as when memory is short.
std::set<std::string>& failing();
/// What is still referred to, constants aside.
[[nodiscard]] std::vector<std::string> live();
/// Forgets every object and every failure.
void reset();

} // namespace fakecf

template<class T>
T& fakecf::as(CFTypeRef reference, const char* caller) {
    Object& object = objectOf(reference, caller);
    if (auto* typed = dynamic_cast<T*>(&object))
        return *typed;
    die(std::string(caller) + " was given " + object.description);
}

} // namespace tilewright::testing
