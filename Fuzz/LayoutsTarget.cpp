#include "LayoutsTarget.h"

#include <WindowManager/LayoutCoding.h>

#include <cstdio>
#include <cstdlib>

namespace tilewright {

namespace {

void require(bool isTrue, const char* what) {
    if (isTrue)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

} // namespace

bool checkLayoutsFile(const QByteArray& bytes) {
    const auto persisted = LayoutCoding::decodePersisted(bytes);
    if (!persisted)
        return false;
    const auto written = LayoutCoding::encode(*persisted);
    require(written.has_value(), "a document that was read cannot be written");
    const auto again = LayoutCoding::decodePersisted(*written);
    require(again == persisted, "a document that was written reads as another");
    require(LayoutCoding::encode(*again) == written, "a document is written in two ways");
    return true;
}

} // namespace tilewright
