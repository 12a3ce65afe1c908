#include "TrayDesktop.h"

#include <ProgramWindows.h>
#include <Waiting.h>

#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

constexpr int largestItem = 64;

} // namespace

TrayDesktop::TrayDesktop(std::unique_ptr<XServer> server)
    : session_(std::move(server)) {
    EXPECT_TRUE(session_.startWindowManager(WindowManagerKind::openbox));
}

std::map<QString, QString> TrayDesktop::environment() const {
    if (scale_ == 1)
        return {};
    return {{QStringLiteral("QT_SCALE_FACTOR"), QString::number(scale_)}};
}

Subprocess& TrayDesktop::startProgram(double scale) {
    scale_ = scale;
    program_ = &session_.start(QStringLiteral(TILEWRIGHT_PROGRAM), {}, environment());
    return *program_;
}

void TrayDesktop::waitUntilFound() {
    const XInspector& look = inspector();
    EXPECT_TRUE(waitUntil([&] {
        const XReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
            look.connection(),
            xcb_get_selection_owner(look.connection(), look.atom("_TILEWRIGHT_INSTANCE")),
            nullptr));
        return reply && reply->owner != XCB_NONE;
    }));
}

void TrayDesktop::startAgain() {
    Subprocess& second = session_.start(QStringLiteral(TILEWRIGHT_PROGRAM), {}, environment());
    EXPECT_TRUE(second.waitForEnd());
    EXPECT_EQ(second.exitCode(), 0);
}

std::optional<QRect> TrayDesktop::item() {
    if (!program_)
        return std::nullopt;
    const XInspector& look = inspector();
    for (const XInspector::Window window : look.windowsOf(program_->pid())) {
        const QRect frame = look.clientFrame(window);
        const bool isSmall = frame.width() > 4 && frame.width() <= largestItem &&
                             frame.height() > 4 && frame.height() <= largestItem;
        if (isSmall && look.isMapped(window))
            return frame;
    }
    return std::nullopt;
}

QRect TrayDesktop::waitForItem() {
    std::optional<QRect> last;
    // A bar makes room for an item in steps.
    EXPECT_TRUE(waitUntil([&] {
        last = item();
        return last && staysTrue([&] { return item() == last; }, std::chrono::milliseconds(150));
    })) << "the item does not show";
    return last.value_or(QRect());
}

std::optional<QRect> TrayDesktop::panel() {
    return program_ ? openPanelFrame(inspector(), program_->pid(), scale_) : std::nullopt;
}

QRect TrayDesktop::waitForPanel() {
    std::optional<QRect> found;
    EXPECT_TRUE(waitUntil([&] {
        found = panel();
        return found.has_value();
    })) << "the panel does not show";
    return found.value_or(QRect());
}

} // namespace tilewright::testing
