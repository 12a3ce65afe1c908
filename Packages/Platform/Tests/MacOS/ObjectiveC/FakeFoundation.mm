// Foundation's classes as far as the backend uses them. Their state is beside the objects: classes
// of this runtime have none but what their interface declares.

#include "FakeObjects.h"

#include <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <vector>

extern "C" {
using Implementation = void (*)();
id class_createInstance(Class type, std::size_t extra);
BOOL class_respondsToSelector(Class type, SEL selector);
Class class_getSuperclass(Class type);
Implementation objc_msg_lookup(id receiver, SEL selector);
const char* sel_getName(SEL selector);
/// What the runtime calls in place of a method that there is not.
extern Implementation (*__objc_msg_forward2)(id receiver, SEL selector);
}

using namespace tilewright::testing;

namespace {

// For the whole process: nothing of it is ever freed, so that no object is another one's successor.
std::map<FakeCocoa::Object, QString> texts;
std::map<FakeCocoa::Object, std::vector<id>> arrays;
std::map<FakeCocoa::Object, QString> links;
std::map<FakeCocoa::Object, double> dates;
std::map<FakeCocoa::Object, QByteArray> datas;
FakeCocoa& cocoa() { return FakeCocoa::current(); }

FakeCocoa::Center centerOf(id center) {
    if ([center isKindOfClass:[NSDistributedNotificationCenter class]])
        return FakeCocoa::Center::distributed;
    return center == sharedObject([NSNotificationCenter class]) ? FakeCocoa::Center::application
                                                                : FakeCocoa::Center::workspace;
}

/// The names that AppKit itself has are no objects here.
std::string nameText(NSString* name) {
    if (texts.contains((void*)name))
        return textOf(name).toStdString();
    return reinterpret_cast<const char*>((void*)name);
}

void observe(id center, id observer, SEL selector, NSString* name, quint64 suspension) {
    cocoa().observers.push_back({(void*)observer, centerOf(center), nameText(name), suspension,
                                 [observer, selector] { call(observer, selector, nil); }});
}

Implementation endProcess(id /*receiver*/, SEL selector) {
    std::fprintf(stderr, "the receiver does not recognize %s\n", sel_getName(selector));
    std::abort();
}

} // namespace

namespace tilewright::testing {

void endProcessOnUnknownSelectors() { __objc_msg_forward2 = endProcess; }

id sharedObject(Class type) {
    static std::map<FakeCocoa::Object, id> objects;
    id& object = objects[(void*)type];
    if (!object)
        object = [[type alloc] init];
    return object;
}

NSString* makeText(const QString& text) {
    NSString* made = [[NSString alloc] init];
    texts[(void*)made] = text;
    return made;
}

QString textOf(NSString* text) { return text ? texts.at((void*)text) : QString(); }

NSArray* makeArray(std::vector<id> objects) {
    NSArray* made = [[NSArray alloc] init];
    arrays[(void*)made] = std::move(objects);
    return made;
}

NSURL* makeFileURL(const QString& path) {
    NSURL* made = [[NSURL alloc] init];
    links[(void*)made] = path;
    return made;
}

NSDate* makeDate(double seconds) {
    NSDate* made = [[NSDate alloc] init];
    dates[(void*)made] = seconds;
    return made;
}

QByteArray bytesOf(NSData* data) { return datas.at((void*)data); }
QString linkOf(NSURL* url) { return links.at((void*)url); }

void call(id object, SEL selector, id argument) {
    [object performSelector:selector withObject:argument];
}

} // namespace tilewright::testing

@implementation NSObject
+ (instancetype)alloc {
    return class_createInstance(self, 0);
}
+ (Class)class {
    return self;
}
- (instancetype)init {
    return self;
}
- (BOOL)isEqual:(id)object {
    return self == object;
}
- (BOOL)isKindOfClass:(Class)type {
    for (Class mine = isa; mine; mine = class_getSuperclass(mine)) {
        if (mine == type)
            return YES;
    }
    return NO;
}
- (NSUInteger)hash {
    return reinterpret_cast<NSUInteger>((void*)self);
}
- (BOOL)respondsToSelector:(SEL)selector {
    return class_respondsToSelector(isa, selector);
}
- (id)performSelector:(SEL)selector withObject:(id)object {
    if (!class_respondsToSelector(isa, selector))
        std::abort();
    return reinterpret_cast<id (*)(id, SEL, id)>(objc_msg_lookup(self, selector))(self, selector,
                                                                                  object);
}
- (id)retain {
    return self;
}
@end

@implementation NSString
+ (instancetype)stringWithCharacters:(const unichar*)characters length:(NSUInteger)length {
    return makeText(QString(reinterpret_cast<const QChar*>(characters), qsizetype(length)));
}
+ (instancetype)stringWithUTF8String:(const char*)text {
    return makeText(QString::fromUtf8(text));
}
- (NSUInteger)length {
    return NSUInteger(textOf(self).size());
}
- (void)getCharacters:(unichar*)buffer range:(NSRange)range {
    const QString part = textOf(self).mid(qsizetype(range.location), qsizetype(range.length));
    std::copy(part.utf16(), part.utf16() + part.size(), buffer);
}
@end

@implementation NSArray
- (NSUInteger)count {
    return arrays.at((void*)self).size();
}
- (id)objectAtIndex:(NSUInteger)index {
    return arrays.at((void*)self).at(index);
}
- (id)firstObject {
    const auto& all = arrays.at((void*)self);
    return all.empty() ? nil : all.front();
}
@end

@implementation NSURL
+ (instancetype)URLWithString:(NSString*)text {
    if (textOf(text).isEmpty())
        return nil;
    return makeFileURL(textOf(text));
}
- (NSString*)path {
    return makeText(linkOf(self));
}
@end

@implementation NSDate
- (NSTimeInterval)timeIntervalSinceReferenceDate {
    return dates.at((void*)self);
}
@end

@implementation NSData
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length {
    NSData* made = [[NSData alloc] init];
    datas[(void*)made] = QByteArray(static_cast<const char*>(bytes), qsizetype(length));
    return made;
}
@end

@implementation NSBundle
+ (NSBundle*)mainBundle {
    return sharedObject(self);
}
- (NSString*)bundleIdentifier {
    return cocoa().bundleIdentifier ? makeText(*cocoa().bundleIdentifier) : nil;
}
@end

@implementation NSNotificationCenter
+ (NSNotificationCenter*)defaultCenter {
    return sharedObject(self);
}
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(NSNotificationName)name
             object:(id)object {
    (void)object;
    observe(self, observer, selector, name, 0);
}
- (void)removeObserver:(id)observer {
    const auto center = centerOf(self);
    std::erase_if(cocoa().observers, [&](const FakeCocoa::Observer& known) {
        return known.observer == (void*)observer && known.center == center;
    });
}
@end

@implementation NSDistributedNotificationCenter
+ (NSDistributedNotificationCenter*)defaultCenter {
    return sharedObject(self);
}
- (void)addObserver:(id)observer
              selector:(SEL)selector
                  name:(NSNotificationName)name
                object:(NSString*)object
    suspensionBehavior:(NSNotificationSuspensionBehavior)suspensionBehavior {
    (void)object;
    observe(self, observer, selector, name, suspensionBehavior);
}
- (void)postNotificationName:(NSNotificationName)name
                      object:(NSString*)object
                    userInfo:(NSDictionary*)userInfo
          deliverImmediately:(BOOL)deliverImmediately {
    (void)object;
    (void)userInfo;
    cocoa().posted.emplace_back(nameText(name), deliverImmediately != 0);
}
@end

@implementation NSAppleEventManager
+ (NSAppleEventManager*)sharedAppleEventManager {
    return sharedObject(self);
}
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID {
    cocoa().appleEvents[{eventClass, eventID}] = [handler, selector] {
        reinterpret_cast<void (*)(id, SEL, id, id)>(objc_msg_lookup(handler, selector))(
            handler, selector, nil, nil);
    };
}
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID {
    cocoa().appleEvents.erase({eventClass, eventID});
}
@end

@implementation NSProcessInfo
+ (NSProcessInfo*)processInfo {
    return sharedObject(self);
}
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
    NSObject* token = [[NSObject alloc] init];
    cocoa().activities[(void*)token] = {options, textOf(reason)};
    return token;
}
- (void)endActivity:(id<NSObject>)activity {
    cocoa().activities.at((void*)activity).isUnderWay = false;
}
@end

@implementation NSUserDefaults
+ (NSUserDefaults*)standardUserDefaults {
    return sharedObject(self);
}
- (NSString*)stringForKey:(NSString*)key {
    const auto found = cocoa().defaults.find(textOf(key));
    return found == cocoa().defaults.end() ? nil : makeText(found->second);
}
- (void)setObject:(id)value forKey:(NSString*)key {
    cocoa().defaults[textOf(key)] = textOf(value);
}
@end

@implementation NSFileManager
+ (NSFileManager*)defaultManager {
    return sharedObject(self);
}
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domains {
    cocoa().askedFolder = {directory, domains};
    if (!cocoa().supportFolder)
        return makeArray({});
    return makeArray({makeFileURL(*cocoa().supportFolder)});
}
@end
