#include "MacUserNotifications.h"

#include "MacText.h"

#include <UserNotifications/UserNotifications.h>

namespace tilewright {

void MacUserNotifications::show(const QString& title, const QString& text) {
    // The centre is only there for a program in a bundle.
    if (![[NSBundle mainBundle] bundleIdentifier])
        return;
    UNMutableNotificationContent* content = [[UNMutableNotificationContent alloc] init];
    [content setTitle:toNSString(title)];
    [content setBody:toNSString(text)];
    UNNotificationRequest* request =
        [UNNotificationRequest requestWithIdentifier:toNSString(QStringLiteral("tilewright"))
                                             content:content
                                             trigger:nil];
    UNUserNotificationCenter* center = [UNUserNotificationCenter currentNotificationCenter];
    [center requestAuthorizationWithOptions:UNAuthorizationOptionAlert
                          completionHandler:^(BOOL granted, NSError*) {
                            if (granted)
                                [center addNotificationRequest:request withCompletionHandler:nil];
                          }];
}

} // namespace tilewright
