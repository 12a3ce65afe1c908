// The conformance suite on the GNOME backend: a real message bus, and a stand-in for the shell with
// the program's companion inside. What the shell draws, and where it puts a window, runs in a real
// shell only: of those this shows what it is asked for.

#include "MockCompanion.h"
#include "PlatformWorld.h"
#include "PrivateBus.h"
#include "SessionHands.h"

#include <FreeDesktop/FreeDesktopInstanceActivation.h>
#include <Gnome/GnomePlatform.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <QWidget>
#include <atomic>
#include <cmath>
#include <thread>
#include <unistd.h>

namespace tilewright::testing {

namespace {

constexpr int displayWidth = 1440;
constexpr int displayHeight = 900;
constexpr int active = 1;
constexpr int inactive = 2;
constexpr int control = 2;
const QString compositorsSocket = QStringLiteral("wayland-7");

QByteArray numbers(double x, double y) {
    return "[" + QByteArray::number(x) + "," + QByteArray::number(y) + "]";
}

QByteArray numbers(const WindowFrame& frame) {
    return "[" + QByteArray::number(frame.position.x) + "," + QByteArray::number(frame.position.y) +
           "," + QByteArray::number(frame.size.width) + "," +
           QByteArray::number(frame.size.height) + "]";
}

/// The environment of a program that is started in the session.
struct SessionEnvironment {
    explicit SessionEnvironment(const QByteArray& bus) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus);
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        qputenv("WAYLAND_DISPLAY", compositorsSocket.toLatin1());
        qputenv("HOME", home.path().toLocal8Bit());
        for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qunsetenv(variable);
    }

    QTemporaryDir home;
};

class GnomeWorld final : public PlatformWorld {
public:
    GnomeWorld() {
        shell_.extensionState = active;
        shell_.onCommand = [this](const QJsonObject& command) { obey(command); };
        platform_ = std::make_unique<GnomePlatform>();
        installation_.emplace(*platform_);
        EXPECT_TRUE(waitUntil([this] { return shell_.seesProgram(); }));
        shell_.greet(hello());
        EXPECT_TRUE(waitUntil([this] { return shell_.isAnswered() && isTrusted(); }));
        // Every session of GNOME has somebody who keeps the display from being blanked.
        EXPECT_EQ(session_.heldInhibitions(), 0);
    }
    ~GnomeWorld() override { GnomeWorld::endPlatform(); }

    [[nodiscard]] bool isTrusted() const { return platform_->accessibility.isTrusted(); }

    Platform& platform() override { return *platform_; }
    bool waitUntil(const std::function<bool()>& condition) override {
        return testing::waitUntil(condition);
    }

    ProcessID openWindow(const WindowFrame& frame) override {
        ++window_;
        frame_ = frame;
        isInFront_ = false;
        isThere_ = true;
        shell_.call("Focus", R"({"focus":)" + windowText() + "}");
        return getppid();
    }
    void closeWindow() override {
        isThere_ = false;
        if (std::exchange(isDragging_, false))
            drag("DragEnd", R"(,"cancelled":true)");
        shell_.call("Gone", R"({"window":)" + QByteArray::number(window_) + "}");
        shell_.call("Focus", R"({"focus":null})");
    }
    WindowFrame windowFrame() const override { return frame_; }

    void movePointer(AppKitPoint to) override {
        pointer_ = numbers(std::floor(to.x), displayHeight - 1 - std::floor(to.y));
        if (isDragging_)
            drag("DragMotion");
        else
            shell_.call("Pointer", R"({"keys":0,"pointer":)" + pointer_ + "}");
    }
    // The shell's keys and buttons are told of while a window is dragged, and so one is.
    void holdControl() override { setKeys(control); }
    void releaseControl() override { setKeys(0); }
    void pressButton() override {
        if (isPanelOnDisplay())
            shell_.call("PressOutside", R"({"overview":false})");
        else
            beginDrag();
    }
    void releaseButton() override {
        if (std::exchange(isDragging_, false))
            drag("DragEnd", R"(,"cancelled":false)");
    }
    void tapEscape() override {
        if (QWidget* panel = panelWindow()) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, {});
            QCoreApplication::sendEvent(panel, &press);
        }
    }

    void addPanel() override { shell_.call("Displays", R"({"displays":[)" + display(40) + "]}"); }
    bool showsPanel() const override {
        const QWidget* panel = panelWindow();
        return panel && isPanelOnDisplay() && panel->width() == 300;
    }

    std::optional<AppKitRect> overlayFrame() const override {
        if (!shell_.overlay)
            return std::nullopt;
        const QJsonArray area = (*shell_.overlay)[QStringLiteral("area")].toArray();
        return AppKitRect{area[0].toDouble(),
                          displayHeight - area[1].toDouble() - area[3].toDouble(),
                          area[2].toDouble(), area[3].toDouble()};
    }
    // The shell lets them through.
    bool overlayTakesPresses() const override { return false; }
    bool drawsOverlays() const override { return false; }
    bool isThisApplicationInFront() const override { return isInFront_; }

    std::optional<ShownItem> shownItem() override {
        // With the program's end the companion takes its item away.
        if (!shell_.item || !shell_.seesProgram())
            return std::nullopt;
        return ShownItem{(*shell_.item)[QStringLiteral("name")].toString(), QImage()};
    }
    bool showsEverySymbol() const override { return false; }
    AppKitPoint clickItem() override {
        shell_.call("ItemClicked", R"({"item":[600,0,24,24],"pointer":[610,10]})");
        return {612, displayHeight - 12};
    }

    void startEarlierInstance() override {
        earlier_ =
            std::make_unique<FreeDesktopInstanceActivation>(compositorsSocket, bus_.connect());
        QObject::connect(earlier_.get(), &InstanceActivation::activationRequested, earlier_.get(),
                         [this] { ++requestsToEarlier_; });
        EXPECT_EQ(earlier_->claim(), InstanceActivation::Claim::first);
    }
    bool isEarlierInstanceAsked() override { return requestsToEarlier_ == 1; }
    void startLaterInstance() override {
        // As another process would: while this thread's event loop runs on.
        std::atomic<bool> isDone = false;
        const QDBusConnection connection = bus_.connect();
        std::thread other([&] {
            FreeDesktopInstanceActivation later(compositorsSocket, connection);
            EXPECT_EQ(later.claim(), InstanceActivation::Claim::another);
            isDone = true;
        });
        EXPECT_TRUE(waitUntil([&] { return isDone.load(); }));
        other.join();
    }
    void endPlatform() override {
        installation_.reset();
        platform_.reset();
    }

    void wishReducedMotion(bool isReduced) override { session_.wishReducedMotion(isReduced); }
    bool wishDark(bool isDark) override {
        session_.wishDark(isDark);
        return true;
    }
    bool blendsWindows() const override { return true; }
    void startBlending() override {}

    // The user turns the extension off and on.
    void setTrust(bool isGranted) override {
        shell_.extensionState = isGranted ? active : inactive;
        shell_.announceExtension();
        if (isGranted)
            shell_.greet(hello());
    }
    int heldAssertions() override { return session_.heldInhibitions(); }
    QString home() const override { return environment_.home.path(); }

private:
    [[nodiscard]] static QByteArray display(int bar) {
        const QByteArray size =
            QByteArray::number(displayWidth) + "," + QByteArray::number(displayHeight - bar);
        return displayText(true,
                           "[0,0," + QByteArray::number(displayWidth) + "," +
                               QByteArray::number(displayHeight) + "]",
                           "[0," + QByteArray::number(bar) + "," + size + "]");
    }
    [[nodiscard]] static QByteArray hello() { return helloText(display(0)); }
    [[nodiscard]] QByteArray windowText() const {
        return testing::windowText(window_, numbers(frame_), false, getppid());
    }

    void setKeys(int keys) {
        beginDrag();
        keys_ = keys;
        drag("DragMotion");
    }
    void beginDrag() {
        if (std::exchange(isDragging_, true))
            return;
        ++serial_;
        drag("DragBegin");
    }
    void drag(const char* method, const QByteArray& more = {}) {
        QByteArray text = dragText(serial_, pointer_, keys_, windowText());
        text.chop(1);
        shell_.call(method, text + more + "}");
    }

    void obey(const QJsonObject& command) {
        const QString name = command[QStringLiteral("c")].toString();
        if (name == QStringLiteral("frame") && isThere_ &&
            command[QStringLiteral("window")].toInt() == window_) {
            const QJsonArray frame = command[QStringLiteral("frame")].toArray();
            frame_ = {{frame[0].toDouble(), frame[1].toDouble()},
                      {frame[2].toDouble(), frame[3].toDouble()}};
            shell_.call("FrameSettled", R"({"window":)" + QByteArray::number(window_) +
                                            R"(,"frame":)" + numbers(frame_) + "}");
        } else if (name == QStringLiteral("panel") && isPanelOnDisplay()) {
            shell_.call("Focus", R"({"focus":)" +
                                     testing::windowText(999, "[0,0,300,200]", true, getpid()) +
                                     "}");
        } else if (name == QStringLiteral("front")) {
            isInFront_ = true;
        } else if (name == QStringLiteral("pointer")) {
            shell_.call("Pointer", R"({"keys":0,"pointer":)" + pointer_ + "}");
        }
    }
    [[nodiscard]] bool isPanelOnDisplay() const {
        return shell_.panel && (*shell_.panel)[QStringLiteral("shown")].toBool();
    }
    /// The window that the companion takes for the panel.
    [[nodiscard]] QWidget* panelWindow() const {
        if (!shell_.panel)
            return nullptr;
        const QString title = (*shell_.panel)[QStringLiteral("title")].toString();
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible() && widget->windowTitle() == title)
                return widget;
        }
        return nullptr;
    }

    PrivateBus bus_;
    SessionEnvironment environment_{bus_.address()};
    MockCompanion shell_{bus_.connect()};
    SessionHands session_{QString::fromUtf8(bus_.address())};
    std::unique_ptr<GnomePlatform> platform_;
    std::optional<Platform::Installation> installation_;
    std::unique_ptr<FreeDesktopInstanceActivation> earlier_;
    int requestsToEarlier_ = 0;
    int window_ = 0;
    WindowFrame frame_;
    bool isThere_ = false;
    bool isInFront_ = false;
    QByteArray pointer_ = "[0,0]";
    int keys_ = 0;
    int serial_ = 0;
    bool isDragging_ = false;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Gnome, PlatformConformance,
                         ::testing::Values([] { return std::make_unique<GnomeWorld>(); }));

} // namespace tilewright::testing
