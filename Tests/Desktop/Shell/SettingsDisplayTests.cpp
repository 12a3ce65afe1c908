// The settings window on a display that is low, and on one that is unplugged.

#include "ShellDesktop.h"

#include <Waiting.h>

#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

using namespace Qt::StringLiterals;

class SettingsOn : public ::testing::TestWithParam<WindowManagerKind> {
protected:
    void begin(std::unique_ptr<XServer> server) {
        desktop = std::make_unique<ShellDesktop>(GetParam(), std::move(server));
        desktop->startProgram();
    }
    /// Opens the settings from the panel.
    void openSettings() {
        desktop->input().move({400, 240});
        ASSERT_TRUE(waitUntil([&] {
            return desktop->startAgain() == 0 &&
                   waitUntil([&] { return desktop->panel().has_value(); }, std::chrono::seconds(1));
        }));
        desktop->input().click(ShellDesktop::settingsButton(desktop->panel().value_or(QRect())));
        ASSERT_TRUE(waitUntil(
            [&] { return desktop->settingsWindow() && desktop->inspector().isMapped(window()); }));
    }
    void use(const QString& program, const QStringList& arguments) {
        static_cast<void>(outputOf(program, arguments, desktop->session().environment()));
    }
    [[nodiscard]] XInspector::Window window() { return desktop->settingsWindow().value_or(0); }
    [[nodiscard]] QRect frame() { return desktop->inspector().outerFrame(window()); }

    std::unique_ptr<ShellDesktop> desktop;
};

class SettingsOnAnUnpluggedDisplay : public SettingsOn {};

std::string managerName(const ::testing::TestParamInfo<WindowManagerKind>& kind) {
    return QString::fromLatin1(testing::name(kind.param)).remove(u'-').toStdString();
}

INSTANTIATE_TEST_SUITE_P(Under, SettingsOn,
                         ::testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                           WindowManagerKind::icewm),
                         managerName);
// Icewm brings every window back by itself.
INSTANTIATE_TEST_SUITE_P(Under, SettingsOnAnUnpluggedDisplay,
                         ::testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4),
                         managerName);

TEST_P(SettingsOn, ALowDisplayAreWholeAndAsWideAsEver) {
    begin(XServer::virtualScreen({800, 480}));
    openSettings();
    constexpr QRect display(0, 0, 800, 480);
    EXPECT_TRUE(waitUntil([&] { return display.contains(frame()); }))
        << frame().y() << " to " << frame().bottom();
    EXPECT_EQ(desktop->inspector().clientFrame(window()).width(), 520);
}

TEST_P(SettingsOnAnUnpluggedDisplay, ComeBackWholeByThemselves) {
    begin(XServer::twoOutputs());
    openSettings();
    use(u"xdotool"_s, {u"windowmove"_s, QString::number(window()), u"2500"_s, u"300"_s});
    constexpr QRect left(0, 0, 1920, 1080);
    constexpr QRect right(1920, 0, 1920, 1080);
    ASSERT_TRUE(waitUntil([&] { return right.contains(frame()); })) << frame().x();
    use(u"xrandr"_s, {u"--output"_s, u"DUMMY1"_s, u"--off"_s});
    EXPECT_TRUE(waitUntil([&] { return left.contains(frame()); }))
        << frame().x() << ", " << frame().y();
}

} // namespace
} // namespace tilewright::testing
