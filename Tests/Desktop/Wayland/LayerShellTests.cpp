// The overlay and keep-awake on a real compositor that lets programs show layers.

#include "SwaySession.h"

#include <LayerShell/LayerShellOverlaySurface.h>
#include <OverlayFixture.h>
#include <Platform/QtMainLoop.h>
#include <Wayland/WaylandPlatform.h>

#include <QFileInfo>
#include <cmath>

namespace tilewright::testing {
namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

/// The largest difference of any channel of any pixel; more than any where the sizes differ.
int difference(const QImage& some, const QImage& others) {
    if (some.size() != others.size())
        return 256;
    int largest = 0;
    for (int y = 0; y < some.height(); ++y) {
        for (int x = 0; x < some.width(); ++x) {
            const QRgb a = some.pixel(x, y);
            const QRgb b = others.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(a) - qRed(b)),
                                std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
        }
    }
    return largest;
}

/// The overlay with three zones over a full-screen window, each pixel of the display one of its
/// own.
class LayerShellDesktop : public ::testing::TestWithParam<double> {
protected:
    explicit LayerShellDesktop(double scale = GetParam())
        : scale_(scale)
        , sway(scale) {
        look::setPrefersReducedMotion(true);
        model.setLayout(makeLayout(
            {makeZone(0, 0, 0.3, 1), makeZone(0.3, 0, 0.7, 0.5), makeZone(0.3, 0.5, 0.7, 0.5)}));
        surface.setScreen(screen);
    }
    ~LayerShellDesktop() override { look::setPrefersReducedMotion(false); }

    void showWindow() {
        QProcessEnvironment environment = sway.environment();
        environment.insert(u"QT_QPA_PLATFORM"_s, u"wayland"_s);
        ASSERT_TRUE(window.start(QStringLiteral(TILEWRIGHT_TEST_WINDOW),
                                 {u"Beneath"_s, u"window"_s}, environment));
        // Until it fills the display there is something of both, however long that lasts.
        waitUntilAllOver(Tone::light);
    }
    /// What a display shows without the overlay: sway's ground, or the window.
    enum class Tone { dark, light };
    /// Waits until the display shows nothing else, and takes that for what is beneath.
    void waitUntilAllOver(Tone tone) {
        ASSERT_TRUE(waitUntil([&] {
            beneath = sway.picture(display);
            if (beneath.isNull() || (qGray(beneath.pixel(0, 0)) > 128) != (tone == Tone::light))
                return false;
            QImage plain(beneath.size(), beneath.format());
            plain.fill(beneath.pixel(0, 0));
            return beneath == plain;
        }));
    }
    void highlight(std::size_t zone) {
        model.setHighlightedZoneID(model.layout().zones.at(zone).id);
        desktop.platform.fakeMainLoop.runPosted();
    }
    /// Whether the display comes to show exactly what the view is, over what was there before.
    [[nodiscard]] ::testing::AssertionResult looksLikeTheView() {
        QImage expected = beneath;
        {
            QImage overlay(beneath.size(), QImage::Format_ARGB32_Premultiplied);
            overlay.fill(Qt::transparent);
            overlay.setDevicePixelRatio(scale_);
            SnapOverlayView same(model);
            same.resize((QSizeF(beneath.size()) / scale_).toSize());
            same.render(&overlay, {}, {}, {});
            overlay.setDevicePixelRatio(1);
            QPainter(&expected).drawImage(0, 0, overlay);
        }
        int found = 0;
        constexpr int rounding = 2;
        if (waitUntil([&] {
                desktop.platform.fakeMainLoop.runPosted();
                found = difference(sway.picture(display), expected);
                return found <= rounding;
            }))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "differs by " << found;
    }
    [[nodiscard]] bool isGone() {
        return waitUntil([&] { return difference(sway.picture(display), beneath) == 0; });
    }

    const double scale_;
    SwaySession sway;
    FakeDesktop desktop;
    SnapOverlayModel model{makeLayout({}), std::nullopt};
    std::shared_ptr<SnapOverlayView> view = std::make_shared<SnapOverlayView>(model);
    QtMainLoop loop;
    WaylandConnection connection{loop, sway.socketPath()};
    WaylandOutputs outputs{connection};
    ScreenPtr screen = makeScreen({.localizedName = u"HEADLESS-1"_s});
    LayerShellOverlaySurface surface{
        connection, outputs,
        [this](const Screen& one) { return outputs.named(one.localizedName()); }, loop, view};
    Subprocess window;
    QString display = u"HEADLESS-1"_s;
    /// What the display shows without the overlay.
    QImage beneath;
};

TEST_P(LayerShellDesktop, ShowsTheViewPixelByPixelAboveAFullScreenWindow) {
    showWindow();
    surface.orderFront();
    EXPECT_TRUE(looksLikeTheView());
    highlight(1);
    EXPECT_TRUE(looksLikeTheView());
    highlight(2);
    EXPECT_TRUE(looksLikeTheView());
    surface.orderOut();
    EXPECT_TRUE(isGone());
    surface.orderFront();
    EXPECT_TRUE(looksLikeTheView());
}

INSTANTIATE_TEST_SUITE_P(, LayerShellDesktop, ::testing::Values(1, 1.25, 1.5, 2));

class LayerShellSession : public LayerShellDesktop {
protected:
    LayerShellSession()
        : LayerShellDesktop(1) {
        waitUntilAllOver(Tone::dark);
    }
};

TEST_F(LayerShellSession, MovesTheOverlayToADisplayThatHasJustCome) {
    surface.orderFront();
    ASSERT_TRUE(looksLikeTheView());
    sway.command(u"create_output"_s);
    ASSERT_TRUE(waitUntil([&] { return outputs.all().size() == 2; }));
    surface.setScreen(makeScreen({.localizedName = u"HEADLESS-2"_s}));
    EXPECT_TRUE(isGone());
    display = u"HEADLESS-2"_s;
    EXPECT_TRUE(looksLikeTheView());
}

TEST_F(LayerShellSession, ShowsTheOverlayInTheNextCompositorWhenTheFirstHasCrashed) {
    surface.orderFront();
    ASSERT_TRUE(looksLikeTheView());
    sway.replace();
    EXPECT_TRUE(looksLikeTheView());
}

TEST_F(LayerShellSession, IsKeptFromIdlingWhileAnAssertionIsHeld) {
    for (const char* name : {"XDG_RUNTIME_DIR", "WAYLAND_DISPLAY"})
        qputenv(name, sway.environment().value(QString::fromLatin1(name)).toLocal8Bit());
    // Nobody on a bus could do it.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
    WaylandPlatform platform;
    PowerAssertionResult assertion{1, 0};
    ASSERT_TRUE(waitUntil([&] {
        assertion =
            platform.powerAssertions.create(u"PreventUserIdleDisplaySleep"_s, 255, u"A test"_s);
        return assertion.status == 0;
    }));
    const QString mark = sway.folder().filePath(u"idle"_s);
    Subprocess idler;
    ASSERT_TRUE(
        idler.start(u"swayidle"_s, {u"timeout"_s, u"1"_s, u"touch "_s + mark}, sway.environment()));
    EXPECT_TRUE(staysTrue([&] { return !QFileInfo::exists(mark); }, 4s));
    platform.powerAssertions.release(assertion.id);
    EXPECT_TRUE(waitUntil([&] { return QFileInfo::exists(mark); }));
}

} // namespace
} // namespace tilewright::testing
