#include "TrayDesktop.h"

#include <Waiting.h>

#include <QFile>
#include <cmath>
#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

constexpr int panelWidth = 300;
constexpr int largestItem = 64;

} // namespace

TrayDesktop::TrayDesktop(std::unique_ptr<XServer> server)
    : session_(std::move(server)) {
    EXPECT_TRUE(session_.startWindowManager(WindowManagerKind::openbox));
}

void TrayDesktop::startBar(Bar bar, int monitor) {
    if (bar == Bar::trayer) {
        session_.start(QStringLiteral("trayer"),
                       {QStringLiteral("--edge"), QStringLiteral("top"), QStringLiteral("--align"),
                        QStringLiteral("right"), QStringLiteral("--height"), QStringLiteral("30"),
                        QStringLiteral("--widthtype"), QStringLiteral("request"),
                        QStringLiteral("--SetDockType"), QStringLiteral("true"),
                        QStringLiteral("--monitor"), QString::number(monitor)});
        return;
    }
    QFile file(session_.home() + QStringLiteral("/tint2rc"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("panel_items = S\npanel_size = 100% 30\npanel_position = top center horizontal\n"
               "strut_policy = follow_size\nsystray_icon_size = 22\nsystray_padding = 4 4 4\n"
               "panel_background_id = 0\npanel_monitor = " +
               QByteArray::number(monitor + 1) + "\n");
    file.close();
    session_.start(QStringLiteral("tint2"), {QStringLiteral("-c"), file.fileName()});
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

void TrayDesktop::startAgain() {
    Subprocess& second = session_.start(QStringLiteral(TILEWRIGHT_PROGRAM), {}, environment());
    EXPECT_TRUE(second.waitForEnd());
    EXPECT_EQ(second.exitCode(), 0);
}

std::optional<QRect> TrayDesktop::item() {
    XInspector& look = inspector();
    for (const XInspector::Window window : look.allWindows()) {
        const QRect frame = look.clientFrame(window);
        const bool isSmall = frame.width() > 4 && frame.width() <= largestItem &&
                             frame.height() > 4 && frame.height() <= largestItem;
        if (isSmall && look.isMapped(window) && program_ != nullptr &&
            look.processID(window) == static_cast<quint32>(program_->pid()))
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
    XInspector& look = inspector();
    for (const XInspector::Window window : look.allWindows()) {
        if (!look.isMapped(window) || !look.isOverrideRedirect(window) || program_ == nullptr ||
            look.processID(window) != static_cast<quint32>(program_->pid()))
            continue;
        const QRect frame = look.clientFrame(window);
        if (std::abs(frame.width() - panelWidth * scale_) <= 1)
            return frame;
    }
    return std::nullopt;
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
