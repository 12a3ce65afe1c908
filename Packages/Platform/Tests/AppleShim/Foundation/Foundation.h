#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#define NS_ENUM(type, name)                                                                        \
    enum name : type name;                                                                         \
    enum name : type
#define NS_OPTIONS(type, name)                                                                     \
    type name;                                                                                     \
    enum : type

#define nil nullptr
#define Nil nullptr

typedef signed char BOOL;
#define YES __objc_yes
#define NO __objc_no

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
typedef struct _NSZone NSZone;

static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    return NSRect{CGPoint{x, y}, CGSize{width, height}};
}

typedef struct _NSRange {
    NSUInteger location;
    NSUInteger length;
} NSRange;
static inline NSRange NSMakeRange(NSUInteger location, NSUInteger length) {
    return NSRange{location, length};
}

static const NSRect NSZeroRect = {{0, 0}, {0, 0}};

@class NSString;
@class NSArray<ObjectType>;

@protocol NSObject
- (BOOL)isEqual:(id)object;
- (BOOL)isKindOfClass:(Class)type;
- (NSUInteger)hash;
- (BOOL)respondsToSelector:(SEL)selector;
- (id)performSelector:(SEL)selector withObject:(id)object;
// Not for code with automatic reference counting: the compiler refuses a call of it there.
- (id)retain;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject> {
    Class isa;
}
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
- (BOOL)isEqual:(id)object;
- (BOOL)isKindOfClass:(Class)type;
- (NSUInteger)hash;
- (BOOL)respondsToSelector:(SEL)selector;
- (id)performSelector:(SEL)selector withObject:(id)object;
@end

@protocol NSCopying
@end

typedef unsigned short unichar;

@interface NSString : NSObject <NSCopying>
+ (instancetype)stringWithCharacters:(const unichar*)characters length:(NSUInteger)length;
+ (instancetype)stringWithUTF8String:(const char*)text;
- (NSUInteger)length;
- (void)getCharacters:(unichar*)buffer range:(NSRange)range;
@end

@interface NSNumber : NSObject
- (unsigned int)unsignedIntValue;
@end

@interface NSArray<ObjectType> : NSObject
- (NSUInteger)count;
- (ObjectType)objectAtIndex:(NSUInteger)index;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)index;
@property(readonly, nonatomic) ObjectType firstObject;
+ (instancetype)arrayWithObjects:(const ObjectType[])objects count:(NSUInteger)count;
@end

@interface NSDictionary<KeyType, ObjectType> : NSObject
- (ObjectType)objectForKey:(KeyType)key;
- (ObjectType)objectForKeyedSubscript:(KeyType)key;
+ (instancetype)dictionaryWithObjects:(const ObjectType[])objects
                              forKeys:(const KeyType<NSCopying>[])keys
                                count:(NSUInteger)count;
@end

@interface NSURL : NSObject
+ (instancetype)URLWithString:(NSString*)text;
@property(readonly, copy) NSString* path;
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
@property(readonly, copy) NSString* bundleIdentifier;
@end

typedef NSString* NSNotificationName;

@interface NSNotification : NSObject
@property(readonly, copy) NSNotificationName name;
@end

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(NSNotificationName)name
             object:(id)object;
- (void)removeObserver:(id)observer;
@end

typedef NS_ENUM(NSUInteger, NSNotificationSuspensionBehavior) {
    NSNotificationSuspensionBehaviorDrop = 1,
    NSNotificationSuspensionBehaviorCoalesce = 2,
    NSNotificationSuspensionBehaviorHold = 3,
    NSNotificationSuspensionBehaviorDeliverImmediately = 4,
};

@interface NSDistributedNotificationCenter : NSNotificationCenter
+ (NSDistributedNotificationCenter*)defaultCenter;
- (void)addObserver:(id)observer
              selector:(SEL)selector
                  name:(NSNotificationName)name
                object:(NSString*)object
    suspensionBehavior:(NSNotificationSuspensionBehavior)suspensionBehavior;
- (void)postNotificationName:(NSNotificationName)name
                      object:(NSString*)object
                    userInfo:(NSDictionary*)userInfo
          deliverImmediately:(BOOL)deliverImmediately;
@end

typedef UInt32 AEEventClass;
typedef UInt32 AEEventID;
enum { kCoreEventClass = 0x61657674, kAEReopenApplication = 0x72617070 };

@interface NSAppleEventDescriptor : NSObject
@end

@interface NSAppleEventManager : NSObject
+ (NSAppleEventManager*)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID;
@end

typedef NS_OPTIONS(unsigned long long, NSActivityOptions) {
    NSActivityIdleSystemSleepDisabled = 1ULL << 20,
    NSActivityUserInitiated = 0x00FFFFFFULL | NSActivityIdleSystemSleepDisabled,
    NSActivityUserInitiatedAllowingIdleSystemSleep = NSActivityUserInitiated &
                                                     ~NSActivityIdleSystemSleepDisabled,
};

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason;
- (void)endActivity:(id<NSObject>)activity;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (NSString*)stringForKey:(NSString*)key;
- (id)objectForKey:(NSString*)key;
- (void)setObject:(id)value forKey:(NSString*)key;
@end

typedef NS_ENUM(NSUInteger, NSSearchPathDirectory) {
    NSApplicationSupportDirectory = 14,
};
typedef NS_OPTIONS(NSUInteger, NSSearchPathDomainMask) {
    NSUserDomainMask = 1,
};

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domains;
@end

@interface NSDate : NSObject
@property(readonly) NSTimeInterval timeIntervalSinceReferenceDate;
@end

@interface NSData : NSObject
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length;
@end
