#pragma once

#include "FakeCocoa.h"

#include <Foundation/Foundation.h>
#include <vector>

// Between the files that implement the fake classes.
namespace tilewright::testing {

/// The one object of a class that has one.
id sharedObject(Class type);
NSString* makeText(const QString& text);
QString textOf(NSString* text);
NSArray* makeArray(std::vector<id> objects);
NSURL* makeFileURL(const QString& path);
NSDate* makeDate(double seconds);
QByteArray bytesOf(NSData* data);
QString linkOf(NSURL* url);
/// The same rectangle for either side.
NSRect toNative(const AppKitRect& rect);
AppKitRect fromNative(NSRect rect);
/// Has a message that its receiver has no method for end the process, with its name.
void endProcessOnUnknownSelectors();
/// Calls a method with one argument by its selector.
void call(id object, SEL selector, id argument);

} // namespace tilewright::testing
