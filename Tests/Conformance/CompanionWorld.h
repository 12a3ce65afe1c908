#pragma once

#include "MockTeller.h"
#include "PlatformWorld.h"
#include "PrivateBus.h"
#include "SessionEnvironment.h"
#include "SessionHands.h"

#include <FreeDesktop/FreeDesktopInstanceActivation.h>

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <atomic>
#include <cmath>
#include <thread>
#include <unistd.h>

namespace tilewright::testing {

inline constexpr int displayWidth = 1440;
inline constexpr int displayHeight = 900;
inline constexpr int control = 2;

inline QByteArray numbers(double x, double y) {
    return "[" + QByteArray::number(x) + "," + QByteArray::number(y) + "]";
}

inline QByteArray numbers(const WindowFrame& frame) {
    return "[" + QByteArray::number(frame.position.x) + "," + QByteArray::number(frame.position.y) +
           "," + QByteArray::number(frame.size.width) + "," +
           QByteArray::number(frame.size.height) + "]";
}

/// A session whose compositor has a companion inside: what that tells and does is the same
/// everywhere. What differs is left to the session's own world.
class CompanionWorld : public PlatformWorld {
public:
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
        teller().call("Focus", R"({"focus":)" + windowText() + "}");
        return getppid();
    }
    void closeWindow() override {
        isThere_ = false;
        if (std::exchange(isDragging_, false))
            drag("DragEnd", R"(,"cancelled":true)");
        teller().call("Gone", R"({"window":)" + QByteArray::number(window_) + "}");
        teller().call("Focus", R"({"focus":null})");
    }
    WindowFrame windowFrame() const override { return frame_; }

    void movePointer(AppKitPoint to) override {
        pointer_ = numbers(std::floor(to.x), displayHeight - 1 - std::floor(to.y));
        if (isDragging_)
            drag("DragMotion");
        else
            teller().call("Pointer", R"({"keys":0,"pointer":)" + pointer_ + "}");
    }
    // Keys and buttons are told of while a window is dragged, and so one is.
    void holdControl() override { setKeys(control); }
    void releaseControl() override { setKeys(0); }
    void pressButton() override {
        if (panelWindow())
            teller().call("PressOutside", R"({"overview":false})");
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

    void addPanel() override { teller().call("Displays", R"({"displays":[)" + display(40) + "]}"); }
    void splitDisplay() override {
        teller().call(
            "Displays",
            R"({"displays":[)" + displayText(true, "[0,0,720,900]", "[0,0,720,900]") + "," +
                displayText(false, "[720,0,720,450]", "[720,0,720,450]", "Virtual-8") + "]}");
    }
    bool showsPanel() const override {
        const QWidget* panel = panelWindow();
        return panel && panel->width() == 300;
    }

    // The compositor lets them through.
    bool overlayTakesPresses() const override { return false; }
    bool isThisApplicationInFront() const override { return isInFront_; }

    void startEarlierInstance() override {
        earlier_ = std::make_unique<FreeDesktopInstanceActivation>(compositorsSocket, earliersBus_);
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
            MessageBus bus(connection);
            FreeDesktopInstanceActivation later(compositorsSocket, bus);
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

    int heldAssertions() override { return session_.heldInhibitions(); }
    QString home() const override { return environment_.home.path(); }

protected:
    CompanionWorld() = default;

    /// Begins with the platform; `teller` is the companion.
    void begin(MockTeller& teller, std::unique_ptr<Platform> platform) {
        teller_ = &teller;
        teller.onCommand = [this](const QJsonObject& command) { obey(command); };
        platform_ = std::move(platform);
        installation_.emplace(*platform_);
    }
    /// What that one introduces itself with.
    [[nodiscard]] static QByteArray hello() { return helloText(display(0)); }
    [[nodiscard]] static QByteArray display(int bar) {
        const QByteArray size =
            QByteArray::number(displayWidth) + "," + QByteArray::number(displayHeight - bar);
        return displayText(true,
                           "[0,0," + QByteArray::number(displayWidth) + "," +
                               QByteArray::number(displayHeight) + "]",
                           "[0," + QByteArray::number(bar) + "," + size + "]");
    }
    [[nodiscard]] QByteArray windowText() const {
        return testing::windowText(window_, numbers(frame_), false, getppid());
    }

    /// While a window is dragged, another set of keys is down.
    virtual void tellKeys(int keys) {
        keys_ = keys;
        drag("DragMotion");
    }
    void setKeys(int keys) {
        beginDrag();
        tellKeys(keys);
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
        teller().call(method, text + more + "}");
    }

    [[nodiscard]] MockTeller& teller() const { return *teller_; }

    PrivateBus bus_;
    SessionEnvironment environment_{bus_.address()};
    SessionHands session_{QString::fromUtf8(bus_.address())};

private:
    void obey(const QJsonObject& command) {
        const QString name = command[QStringLiteral("c")].toString();
        if (name == QStringLiteral("frame") && isThere_ &&
            command[QStringLiteral("window")].toInt() == window_) {
            const QJsonArray frame = command[QStringLiteral("frame")].toArray();
            frame_ = {{frame[0].toDouble(), frame[1].toDouble()},
                      {frame[2].toDouble(), frame[3].toDouble()}};
            teller().call("FrameSettled", R"({"window":)" + QByteArray::number(window_) +
                                              R"(,"frame":)" + numbers(frame_) + "}");
        } else if (name == QStringLiteral("panel") && isPanelAwaited()) {
            teller().call("PanelAwaited", "{}");
            teller().call("Focus", R"({"focus":)" +
                                       testing::windowText(999, "[0,0,300,200]", true, getpid()) +
                                       "}");
        } else if (name == QStringLiteral("front")) {
            isInFront_ = true;
        } else if (name == QStringLiteral("pointer")) {
            teller().call("Pointer", R"({"keys":0,"pointer":)" + pointer_ + "}");
        }
    }
    /// Whether the companion has been told last that it is to place the panel.
    [[nodiscard]] bool isPanelAwaited() const {
        return teller().panel && (*teller().panel)[QStringLiteral("shown")].toBool();
    }
    /// The window that it takes for the panel, while that is on the display.
    [[nodiscard]] QWidget* panelWindow() const {
        if (!isPanelAwaited())
            return nullptr;
        const QString title = (*teller().panel)[QStringLiteral("title")].toString();
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible() && widget->windowTitle() == title)
                return widget;
        }
        return nullptr;
    }

    std::unique_ptr<Platform> platform_;
    MockTeller* teller_ = nullptr;
    std::optional<Platform::Installation> installation_;
    MessageBus earliersBus_{bus_.connect()};
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

} // namespace tilewright::testing
