#include "ShellDesktop.h"

#include <Bars.h>
#include <ProgramWindows.h>
#include <Waiting.h>

#include <QFile>
#include <algorithm>
#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

constexpr int padding = 16;

/// Whether some client has the keyboard for itself, as the open panel does. Takes it for a moment
/// where nobody has it.
bool isKeyboardTaken(const XInspector& look) {
    const XReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
        look.connection(),
        xcb_grab_keyboard(look.connection(), 0, look.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                          XCB_GRAB_MODE_ASYNC),
        nullptr));
    if (!reply || reply->status != XCB_GRAB_STATUS_SUCCESS)
        return true;
    xcb_ungrab_keyboard(look.connection(), XCB_CURRENT_TIME);
    xcb_flush(look.connection());
    return false;
}

/// Whether somebody takes items of the X11 system tray in.
bool isOwned(const XInspector& look, const char* selection) {
    const XReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        look.connection(), xcb_get_selection_owner(look.connection(), look.atom(selection)),
        nullptr));
    return reply && reply->owner != 0;
}

bool hasSystemTray(const XInspector& look) {
    return isOwned(look, "_NET_SYSTEM_TRAY_S0");
}

QString callOnBus(const DesktopSession& session, const QString& service, const QStringList& call) {
    return outputOf(QStringLiteral("dbus-send"),
                    QStringList{QStringLiteral("--session"), QStringLiteral("--print-reply"),
                                QStringLiteral("--dest=") + service} +
                        call,
                    session.environment());
}

bool isOnBus(const DesktopSession& session, const QString& service) {
    return callOnBus(session, QStringLiteral("org.freedesktop.DBus"),
                     {QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.ListNames")})
        .contains(service);
}

/// Whether somebody shows status-notifier items.
bool hasNotifierHost(const DesktopSession& session) {
    const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
    return isOnBus(session, watcher) &&
           callOnBus(session, watcher,
                     {QStringLiteral("/StatusNotifierWatcher"),
                      QStringLiteral("org.freedesktop.DBus.Properties.Get"),
                      QStringLiteral("string:") + watcher,
                      QStringLiteral("string:IsStatusNotifierHostRegistered")})
               .contains(QStringLiteral("boolean true"));
}

bool isAmber(QColor color) {
    return color.red() - color.blue() > 60 && color.red() > color.green();
}

} // namespace

ShellDesktop::ShellDesktop(WindowManagerKind windowManager, std::unique_ptr<XServer> server)
    : session_(std::move(server)) {
    EXPECT_TRUE(session_.startWindowManager(windowManager));
}

void ShellDesktop::startTray(TrayHost host) {
    if (tray_) {
        tray_->stop();
        // What was embedded in it may be left on the desktop for a moment.
        EXPECT_TRUE(waitUntil([&] { return !showsItem(); }));
    }
    host_ = host;
    tray_ = host == TrayHost::statusNotifier ? &startXfcePanel(session_) : &startTint2(session_);
    EXPECT_TRUE(waitUntil([&] {
        return host == TrayHost::statusNotifier ? hasNotifierHost(session_)
                                                : hasSystemTray(inspector());
    })) << "no tray host comes up"
        << session_.describe();
}

QString ShellDesktop::program() {
    return QStringLiteral(TILEWRIGHT_PROGRAM);
}

Subprocess& ShellDesktop::startProgram(const QString& path,
                                       const std::map<QString, QString>& moreEnvironment,
                                       const QStringList& arguments) {
    program_ = &session_.start(path.isEmpty() ? program() : path, arguments, moreEnvironment);
    // From then on another start finds it.
    EXPECT_TRUE(waitUntil([&] { return isOwned(inspector(), "_TILEWRIGHT_INSTANCE"); }));
    return *program_;
}

int ShellDesktop::startAgain() {
    Subprocess& second = session_.start(program());
    EXPECT_TRUE(second.waitForEnd());
    return second.exitCode();
}

QRegion ShellDesktop::itemPixels() {
    // Drawn in one tone that nothing else on the bar has.
    const QImage bar = inspector().screenshot(QRect(0, 0, 1920, barHeight));
    QRegion found;
    for (int y = 0; y < bar.height(); ++y) {
        for (int x = 0; x < bar.width(); ++x) {
            const QColor color = bar.pixelColor(x, y);
            if (std::abs(color.red() - 0x90) < 20 && std::abs(color.green() - 0x90) < 20 &&
                std::abs(color.blue() - 0x90) < 20)
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

std::optional<QPoint> ShellDesktop::findItem() {
    const QRect found = itemPixels().boundingRect();
    // The cup, not some line of the bar.
    if (found.width() < 10 || found.width() > 40 || found.height() < 8)
        return std::nullopt;
    return found.center();
}

bool ShellDesktop::isInFormerHost() {
    // What shows items of the bus shows those of the X server, too, and does so a little sooner:
    // the program's is there until the program has heard of the host.
    if (!program_ || host_ != TrayHost::statusNotifier)
        return false;
    return std::ranges::any_of(inspector().windowsOf(program_->pid()), [&](auto window) {
        return inspector().isMapped(window) && inspector().clientFrame(window).bottom() < barHeight;
    });
}

int ShellDesktop::itemCoverage() {
    int pixels = 0;
    for (const QRect& part : itemPixels())
        pixels += part.width() * part.height();
    return pixels;
}

bool ShellDesktop::showsItem() {
    return findItem().has_value();
}

QPoint ShellDesktop::item() {
    std::optional<QPoint> place;
    EXPECT_TRUE(waitUntil([&] {
        place = isInFormerHost() ? std::nullopt : findItem();
        return place.has_value();
    })) << "the item does not show"
        << session_.describe();
    return place.value_or(QPoint());
}

std::optional<QRect> ShellDesktop::panel() {
    return program_ ? openPanelFrame(inspector(), program_->pid()) : std::nullopt;
}

bool ShellDesktop::waitForPanel(bool isOpen) {
    return waitUntil([&] { return panel().has_value() == isOpen; });
}

QRect ShellDesktop::openPanel() {
    const QPoint place = item();
    input().click(place);
    EXPECT_TRUE(waitForPanel()) << "after a click at " << place.x() << "," << place.y();
    const QRect frame = panel().value_or(QRect());
    // Shown is not painted yet, and it asks for the keyboard until it is granted.
    EXPECT_TRUE(waitUntil([&] { return amberRows(frame).size() > 60; }));
    EXPECT_TRUE(waitUntil([&] { return isKeyboardTaken(inspector()); }));
    return frame;
}

std::vector<int> ShellDesktop::amberRows(const QRect& panel) {
    XInspector& look = inspector();
    const QImage image = look.screenshot(panel);
    // Down a line through the thumbnail's and the cards' left edges' neighbourhood, where only the
    // outlines of zones are amber.
    std::vector<int> rows;
    for (int y = 0; y < image.height(); ++y) {
        bool hasAmber = false;
        for (int x = padding; x < 110 && !hasAmber; ++x)
            hasAmber = isAmber(image.pixelColor(x, y));
        if (hasAmber)
            rows.push_back(y);
    }
    return rows;
}

QPoint ShellDesktop::firstZone(const QRect& panel) {
    const std::vector<int> rows = amberRows(panel);
    if (rows.empty())
        return {};
    return panel.topLeft() + QPoint(padding + 30, rows.front() + 30);
}

QPoint ShellDesktop::card(const QRect& panel, int row, int column) {
    // Runs of rows with amber in them: the thumbnail, then one for each row of cards.
    const std::vector<int> rows = amberRows(panel);
    std::vector<QPoint> runs;
    for (const int y : rows) {
        if (runs.empty() || y > runs.back().y() + 1)
            runs.emplace_back(y, y);
        else
            runs.back().setY(y);
    }
    const auto index = static_cast<std::size_t>(row) + 1;
    if (index >= runs.size()) {
        ADD_FAILURE() << "the panel has " << runs.size() << " rows of drawings";
        return {};
    }
    const int width = (panel.width() - 2 * padding) / 3;
    return panel.topLeft() +
           QPoint(padding + column * width + width / 2, (runs[index].x() + runs[index].y()) / 2);
}

QPoint ShellDesktop::settingsButton(const QRect& panel) {
    return {panel.left() + padding + 20, panel.top() + panel.height() - padding - 7};
}

QPoint ShellDesktop::quitButton(const QRect& panel) {
    return {panel.left() + panel.width() - padding - 10,
            panel.top() + panel.height() - padding - 7};
}

void ShellDesktop::startSession() {
    openPanel();
    input().tapKey(keysym::tab);
    input().tapKey(keysym::space);
    input().tapKey(keysym::escape);
    EXPECT_TRUE(waitForPanel(false));
}

std::optional<XInspector::Window> ShellDesktop::settingsWindow() {
    return inspector().clientTitled(QStringLiteral("Tilewright Settings"));
}

QString ShellDesktop::layoutsFile() const {
    return session_.environment().value(QStringLiteral("XDG_DATA_HOME"),
                                        session_.home() + QStringLiteral("/.local/share")) +
           QStringLiteral("/Tilewright/layouts.json");
}

QByteArray ShellDesktop::layouts() const {
    QFile file(layoutsFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void ShellDesktop::writeLayouts(const QByteArray& json) const {
    writeFile(layoutsFile(), json);
}

} // namespace tilewright::testing
