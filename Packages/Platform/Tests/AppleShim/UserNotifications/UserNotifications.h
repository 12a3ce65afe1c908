#pragma once

#include <Foundation/Foundation.h>

@interface NSError : NSObject
@end

typedef NS_OPTIONS(NSUInteger, UNAuthorizationOptions) {
    UNAuthorizationOptionAlert = 1 << 2,
};

@interface UNNotificationContent : NSObject
@end

@interface UNMutableNotificationContent : UNNotificationContent
@property(copy) NSString* title;
@property(copy) NSString* body;
@end

@class UNNotificationTrigger;

@interface UNNotificationRequest : NSObject
+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNNotificationContent*)content
                              trigger:(UNNotificationTrigger*)trigger;
@end

@interface UNUserNotificationCenter : NSObject
+ (UNUserNotificationCenter*)currentNotificationCenter;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError* error))handler;
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(void (^)(NSError* error))handler;
@end
