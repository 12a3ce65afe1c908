#include "CompanionTarget.h"

#include <Companion/CompanionDecoder.h>
#include <Companion/CompanionState.h>

#include <cmath>
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

void check(double coordinate) {
    // Written so that what is not a number fails, too.
    require(std::abs(coordinate) <= CompanionDecoder::furthest, "a coordinate is out of bounds");
}

void check(const CompanionPoint& point) {
    check(point.x);
    check(point.y);
}

void check(const CompanionRect& rect) {
    check(CompanionPoint{rect.x, rect.y});
    check(CompanionPoint{rect.width, rect.height});
    require(rect.width >= 0 && rect.height >= 0, "a size is negative");
}

void check(const CompanionWindow& window) {
    check(window.frame);
    require(window.process >= 0, "a process has a negative number");
}

void check(const std::optional<CompanionWindow>& window) {
    if (window)
        check(*window);
}

void check(const QString& text) {
    require(text.size() <= CompanionDecoder::longestText, "a text is too long");
}

void check(const std::vector<CompanionDisplay>& displays) {
    require(displays.size() <= std::size_t{CompanionDecoder::mostDisplays}, "too many displays");
    for (const CompanionDisplay& display : displays) {
        check(display.frame);
        check(display.workArea);
        require(display.workArea.width > 0 && display.workArea.height > 0, "an empty work area");
        require(display.workArea.x >= display.frame.x && display.workArea.y >= display.frame.y,
                "a work area is outside its display");
        require(display.unitsPerPoint > 0 && display.scale > 0, "a scale is none");
        for (const QString& text :
             {display.connector, display.vendor, display.product, display.serial})
            check(text);
    }
}

struct Checker {
    void operator()(const CompanionHello& message) const {
        check(message.displays);
        check(message.focus);
        check(message.pointer);
        check(message.shell);
    }
    void operator()(const CompanionDisplays& message) const { check(message.displays); }
    void operator()(const CompanionFocus& message) const { check(message.window); }
    void operator()(const CompanionDrag& message) const {
        check(message.window);
        check(message.pointer);
    }
    void operator()(const CompanionFrameSettled& message) const { check(message.frame); }
    void operator()(const CompanionItemClick& message) const {
        check(message.item);
        check(message.pointer);
    }
    void operator()(const CompanionPointerPlace& message) const { check(message.pointer); }
    void operator()(const CompanionMotionWish&) const {}
    void operator()(const CompanionPanelAwaited&) const {}
    void operator()(const CompanionPressOutside&) const {}
    void operator()(const CompanionGone&) const {}
    void operator()(const CompanionPoll&) const {}
};

} // namespace

bool checkCompanionMessage(const QByteArray& bytes) {
    const qsizetype end = bytes.indexOf('\n');
    const QString method = QString::fromUtf8(bytes.first(std::max<qsizetype>(end, 0)));
    const auto message = CompanionDecoder::decode(method, bytes.sliced(end + 1));
    if (!message)
        return false;
    std::visit(Checker(), *message);
    CompanionState state;
    CompanionHello hello;
    hello.protocol = CompanionDecoder::protocol;
    state.take(hello);
    state.take(*message);
    state.take(*message);
    state.lose();
    require(!state.dragged(), "a drag outlives its companion");
    return true;
}

} // namespace tilewright
