// Compiled by tests only. With MIX_SPACES defined, each line marked as refused has to be an error.

#include <FreeDesktop/NativePixel.h>
#include <WindowManager/CoordinateConverter.h>
#include <WindowManager/WindowManager.h>
#include <WindowManager/ZoneHitTesting.h>
#include <WindowManager/ZoneLayout.h>

using namespace tilewright;

void mix(AppKitPoint mouse, AppKitRect frame, AXPoint axPoint, ZoneRect rect,
         NormalizedPoint fraction, const Zone& zone, const ZoneLayout& layout, const Screen& screen,
         WindowManager& manager, const QtSpace& space, QtRect qt, NativePixel pixel,
         const QRect& unnamed);

void mix(AppKitPoint mouse, AppKitRect frame, AXPoint axPoint, ZoneRect rect,
         NormalizedPoint fraction, const Zone& zone, const ZoneLayout& layout, const Screen& screen,
         WindowManager& manager, const QtSpace& space, QtRect qt, NativePixel pixel,
         const QRect& unnamed) {
    rect = CoordinateConverter::appKitToAX(frame, screen);
    frame = CoordinateConverter::axToAppKit(rect, screen);
    (void)ZoneHitTesting::normalizedPointForMouseLocation(mouse, screen);
    (void)layout.zoneAtNormalized(fraction);
    (void)manager.windowElementAtScreenPoint(mouse);
    manager.moveFocusedWindow(rect);
    (void)frame.contains(mouse);
    (void)(mouse == AppKitPoint{} && axPoint == AXPoint{} && zone == layout.zones.front());
    qt = space.toQt(frame);
    frame = space.toAppKit(qt);
    qt = QtRect::of(unnamed);
    (void)(pixel == NativePixel{} && qt == QtRect{});
#ifdef MIX_SPACES
    (void)CoordinateConverter::appKitToAX(rect, screen);                     // refused
    (void)CoordinateConverter::appKitToAX(zone, screen);                     // refused
    (void)CoordinateConverter::appKitToAX(axPoint);                          // refused
    (void)CoordinateConverter::appKitToAX(fraction);                         // refused
    (void)CoordinateConverter::axToAppKit(frame, screen);                    // refused
    (void)CoordinateConverter::axToAppKit(zone, screen);                     // refused
    (void)ZoneHitTesting::normalizedPointForMouseLocation(fraction, screen); // refused
    (void)ZoneHitTesting::normalizedPointForMouseLocation(axPoint, screen);  // refused
    (void)layout.zoneAtNormalized(mouse);                                    // refused
    (void)layout.zoneAtNormalized(axPoint);                                  // refused
    (void)manager.windowElementAtScreenPoint(axPoint);                       // refused
    (void)manager.windowElementAtScreenPoint(fraction);                      // refused
    manager.moveFocusedWindow(frame);                                        // refused
    manager.moveFocusedWindow(zone);                                         // refused
    (void)frame.contains(axPoint);                                           // refused
    (void)frame.contains(fraction);                                          // refused
    mouse = axPoint;                                                         // refused
    mouse = fraction;                                                        // refused
    rect = frame;                                                            // refused
    frame = rect;                                                            // refused
    (void)(mouse == axPoint);                                                // refused
    (void)(frame == rect);                                                   // refused
    (void)(rect == zone);                                                    // refused
    (void)(fraction == mouse);                                               // refused
    (void)space.toQt(rect);                                                  // refused
    (void)space.toQt(qt);                                                    // refused
    (void)space.toQt(unnamed);                                               // refused
    (void)space.toAppKit(frame);                                             // refused
    (void)space.toAppKit(unnamed);                                           // refused
    (void)frame.contains(pixel);                                             // refused
    qt = frame;                                                              // refused
    qt = unnamed;                                                            // refused
    frame = qt;                                                              // refused
    mouse = pixel;                                                           // refused
    (void)(frame == qt);                                                     // refused
    (void)(mouse == pixel);                                                  // refused
    (void)(qt == unnamed);                                                   // refused
#endif
}
