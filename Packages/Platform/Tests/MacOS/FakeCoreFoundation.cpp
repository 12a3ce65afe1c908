#include "FakeCoreFoundation.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace tilewright::testing::fakecf {

namespace {

class String final : public Object {
public:
    explicit String(QString initial)
        : Object(TypeID::string, "string \"" + initial.toStdString() + "\"")
        , text(std::move(initial)) {}
    bool equals(const Object& other) const override {
        const auto* theirs = dynamic_cast<const String*>(&other);
        return theirs && theirs->text == text;
    }
    const QString text;
};

class Number final : public Object {
public:
    explicit Number(qint64 initial)
        : Object(TypeID::number, "number " + std::to_string(initial))
        , value(initial) {}
    const qint64 value;
};

class Boolean final : public Object {
public:
    explicit Boolean(bool initial)
        : Object(TypeID::boolean, initial ? "true" : "false")
        , value(initial) {}
    const bool value;
};

class Dictionary final : public Object {
public:
    Dictionary()
        : Object(TypeID::dictionary, "dictionary") {}
    void drop() override {
        for (const auto& [key, value] : entries) {
            CFRelease(key);
            CFRelease(value);
        }
    }
    std::vector<std::pair<CFTypeRef, CFTypeRef>> entries;
};

Boolean trueObject(true);
Boolean falseObject(false);

struct Registry {
    std::map<CFTypeRef, std::unique_ptr<Object>> objects;
    std::set<std::string> failing;
};

Registry& registry() {
    static Registry registry;
    return registry;
}

bool isConstant(CFTypeRef reference) {
    return reference == &trueObject || reference == &falseObject;
}

} // namespace

void die(const std::string& message) {
    std::fprintf(stderr, "fake Core Foundation: %s\n", message.c_str());
    std::abort();
}

CFTypeRef adopt(std::unique_ptr<Object> object) {
    const CFTypeRef reference = object.get();
    registry().objects.emplace(reference, std::move(object));
    return reference;
}

Object& objectOf(CFTypeRef reference, const char* caller) {
    if (!reference)
        die(std::string(caller) + " was given null");
    if (reference == &trueObject)
        return trueObject;
    if (reference == &falseObject)
        return falseObject;
    const auto found = registry().objects.find(reference);
    if (found == registry().objects.end())
        die(std::string(caller) + " was given what is no object");
    if (found->second->references == 0)
        die(std::string(caller) + " used a released " + found->second->description);
    return *found->second;
}

CFStringRef makeString(const QString& text) {
    return static_cast<CFStringRef>(adopt(std::make_unique<String>(text)));
}

CFNumberRef makeNumber(qint64 value) {
    return static_cast<CFNumberRef>(adopt(std::make_unique<Number>(value)));
}

QString textOf(CFStringRef string) {
    return as<String>(string, "a string function").text;
}

std::set<std::string>& failing() {
    return registry().failing;
}

std::vector<std::string> live() {
    std::vector<std::string> names;
    for (const auto& [reference, object] : registry().objects) {
        if (object->references > 0)
            names.push_back(object->description);
    }
    std::sort(names.begin(), names.end());
    return names;
}

void reset() {
    registry() = {};
}

} // namespace tilewright::testing::fakecf

using namespace tilewright::testing;

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = reinterpret_cast<CFBooleanRef>(&fakecf::trueObject);
const CFBooleanRef kCFBooleanFalse = reinterpret_cast<CFBooleanRef>(&fakecf::falseObject);
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};

CFTypeRef CFRetain(CFTypeRef object) {
    auto& counted = fakecf::objectOf(object, "CFRetain");
    if (!fakecf::isConstant(object))
        ++counted.references;
    return object;
}

void CFRelease(CFTypeRef object) {
    auto& counted = fakecf::objectOf(object, "CFRelease");
    if (fakecf::isConstant(object))
        return;
    if (--counted.references == 0)
        counted.drop();
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    return fakecf::objectOf(object, "CFGetTypeID").type;
}

Boolean CFEqual(CFTypeRef a, CFTypeRef b) {
    return fakecf::objectOf(a, "CFEqual").equals(fakecf::objectOf(b, "CFEqual"));
}

CFTypeID CFStringGetTypeID(void) {
    return fakecf::TypeID::string;
}

CFTypeID CFBooleanGetTypeID(void) {
    return fakecf::TypeID::boolean;
}

CFTypeID CFNumberGetTypeID(void) {
    return fakecf::TypeID::number;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef /*allocator*/, const UniChar* characters,
                                         CFIndex count) {
    if (!characters || count < 0)
        fakecf::die("CFStringCreateWithCharacters was given no characters");
    if (fakecf::failing().contains("CFStringCreateWithCharacters"))
        return nullptr;
    return fakecf::makeString(QString(reinterpret_cast<const QChar*>(characters), count));
}

CFIndex CFStringGetLength(CFStringRef string) {
    return fakecf::textOf(string).size();
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    const QString text = fakecf::textOf(string);
    if (range.location < 0 || range.length < 0 || range.location + range.length > text.size())
        fakecf::die("CFStringGetCharacters was given a range outside the string");
    for (CFIndex i = 0; i < range.length; ++i)
        buffer[i] = text.at(range.location + i).unicode();
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef /*allocator*/, const void** keys,
                                   const void** values, CFIndex count,
                                   const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
    if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks ||
        valueCallBacks != &kCFTypeDictionaryValueCallBacks)
        fakecf::die("CFDictionaryCreate was given callbacks that own nothing");
    if (fakecf::failing().contains("CFDictionaryCreate"))
        return nullptr;
    auto made = std::make_unique<fakecf::Dictionary>();
    for (CFIndex i = 0; i < count; ++i)
        made->entries.emplace_back(CFRetain(keys[i]), CFRetain(values[i]));
    return static_cast<CFDictionaryRef>(fakecf::adopt(std::move(made)));
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    const auto& entries =
        fakecf::as<fakecf::Dictionary>(dictionary, "CFDictionaryGetValue").entries;
    for (const auto& [known, value] : entries) {
        if (CFEqual(known, key))
            return value;
    }
    return nullptr;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    const qint64 wide = fakecf::as<fakecf::Number>(number, "CFNumberGetValue").value;
    if (type == kCFNumberSInt64Type) {
        *static_cast<qint64*>(value) = wide;
        return true;
    }
    if (type != kCFNumberSInt32Type)
        fakecf::die("CFNumberGetValue was given a type that is not known here");
    *static_cast<qint32*>(value) = static_cast<qint32>(wide);
    return static_cast<qint32>(wide) == wide;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return fakecf::as<fakecf::Boolean>(boolean, "CFBooleanGetValue").value;
}

} // extern "C"
