#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

typedef double CGFloat;
typedef struct CGPoint {
    CGFloat x;
    CGFloat y;
} CGPoint;
typedef struct CGSize {
    CGFloat width;
    CGFloat height;
} CGSize;
typedef struct CGRect {
    CGPoint origin;
    CGSize size;
} CGRect;

static inline CGPoint CGPointMake(CGFloat x, CGFloat y) { return CGPoint{x, y}; }
static inline CGSize CGSizeMake(CGFloat width, CGFloat height) { return CGSize{width, height}; }

typedef std::uint32_t CGDirectDisplayID;

} // extern "C"
