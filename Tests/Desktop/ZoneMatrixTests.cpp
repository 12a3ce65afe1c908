// Windows of real clients under real window managers: found, resolved, and set to every zone of
// every preset; what came of it is read back by a client that knows nothing of the program.

#include "SnapBench.h"

#include <BareClient.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace tilewright;
using namespace tilewright::testing;

namespace {

constexpr std::array clientKinds{ClientKind::xterm, ClientKind::qt, ClientKind::gtkClientDecorated,
                                 ClientKind::fixedDialog};

/// One cell of the table of results.
struct Tally {
    bool isFoundUnderPoint = false;
    bool isResolvedAsFocused = false;
    int zones = 0;
    int exact = 0;
    int limited = 0;
};

/// Appends a line to the table of results, where one is asked for.
void record(const char* manager, const char* setting, ClientKind client, const Tally& tally) {
    const QString folder = qEnvironmentVariable("TILEWRIGHT_RESULTS");
    if (folder.isEmpty())
        return;
    QFile file(
        QDir(folder).filePath(QStringLiteral("%1-%2-%3.row")
                                  .arg(QString::fromLatin1(manager), QString::fromLatin1(setting),
                                       QString::fromLatin1(name(client)))));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QStringLiteral("| %1 | %2 | %3 | %4 | %5 | %6 | %7 | %8 |\n")
                   .arg(QString::fromLatin1(manager), QString::fromLatin1(setting),
                        QString::fromLatin1(name(client)),
                        tally.isFoundUnderPoint ? QStringLiteral("yes") : QStringLiteral("no"),
                        tally.isResolvedAsFocused ? QStringLiteral("yes") : QStringLiteral("no"))
                   .arg(tally.zones)
                   .arg(tally.exact)
                   .arg(tally.limited)
                   .toUtf8());
}

/// How a window of this kind may differ from its zone: by its own limits, or else by what the
/// window manager makes of it. Window Maker 0.96 makes one of fixed size nearly as large as the
/// screen for any program that asks for another size of it: so this asks, for a window of its own.
std::vector<SizeRules> rulesFor(DesktopSession& desktop, WindowManagerKind manager, ClientKind kind,
                                const TestClient& client) {
    const XInspector& inspector = desktop.inspector();
    std::vector<SizeRules> rules{SizeRules::of(inspector, client.window)};
    if (manager != WindowManagerKind::wmaker || kind != ClientKind::fixedDialog)
        return rules;
    const TestClient trial = startClient(desktop, kind);
    const QSize fixed = inspector.clientFrame(trial.window).size();
    const QSize asked = fixed + QSize(40, 30);
    static_cast<void>(outputOf(u"xdotool"_s,
                               {u"windowsize"_s, QString::number(trial.window),
                                QString::number(asked.width()), QString::number(asked.height())},
                               desktop.environment()));
    QSize granted;
    EXPECT_TRUE(waitUntil([&] {
        granted = inspector.clientFrame(trial.window).size();
        return granted != fixed;
    })) << desktop.describe();
    trial.process->stop();
    if (granted != asked) {
        std::printf("%s makes a window of %dx%d one of %dx%d when %dx%d is asked for\n",
                    name(manager), fixed.width(), fixed.height(), granted.width(), granted.height(),
                    asked.width(), asked.height());
        rules.push_back({granted, granted});
    }
    return rules;
}

/// Snaps a client to each zone of each preset on each screen, and looks.
Tally snapEverywhere(DesktopSession& desktop, X11TestPlatform& platform, const TestClient& client,
                     const std::vector<SizeRules>& rules) {
    Tally tally;
    XInspector& inspector = desktop.inspector();
    EXPECT_TRUE(activate(desktop, client.window));
    const auto under = WindowManager::shared().windowElementAtScreenPoint(
        appKitCentre(platform, inspector.outerFrame(client.window)));
    tally.isFoundUnderPoint = under && windowOf(*under) == client.window;
    EXPECT_TRUE(tally.isFoundUnderPoint) << (under ? windowOf(*under) : 0);
    EXPECT_TRUE(waitUntil([&] {
        const auto focused =
            platform.accessibility.systemWideElement().element(AXAttribute::focusedUIElement);
        return focused.value && windowOf(*focused.value) == client.window;
    }));
    tally.isResolvedAsFocused = true;
    for (const ScreenPtr& screen : platform.screens.all()) {
        const QRect area = pixelsOf(Zone{{}, {}, 0, 0, 1, 1}, *screen);
        for (const ZoneLayout& layout : ZoneLayout::builtIns()) {
            for (const Zone& zone : layout.zones) {
                const QRect wanted = pixelsOf(zone, *screen);
                // Both roads to a window in turn: the captured element and the focused one.
                if (tally.zones++ % 2 == 0 && under)
                    WindowManager::shared().snap(*under, zone, *screen);
                else
                    WindowManager::shared().snapFocusedWindow(zone, screen);
                EXPECT_TRUE(settle(platform));
                QRect frame;
                QSize size;
                // A window manager that the machine keeps waiting may come to it only now.
                const bool isPlaced = waitUntil([&] {
                    frame = inspector.outerFrame(client.window);
                    size = inspector.clientFrame(client.window).size();
                    return std::any_of(rules.begin(), rules.end(), [&](const SizeRules& each) {
                        return each.accept(frame, wanted, size, area);
                    });
                });
                EXPECT_TRUE(isPlaced)
                    << layout.name.toStdString() << " / " << zone.name.toStdString() << ": wanted "
                    << text(wanted) << ", is " << text(frame) << ", client " << size.width() << "x"
                    << size.height();
                if (frame == wanted)
                    ++tally.exact;
                else if (isPlaced)
                    ++tally.limited;
            }
        }
    }
    return tally;
}

std::string managerName(const ::testing::TestParamInfo<WindowManagerKind>& info) {
    return name(info.param);
}

} // namespace

class ZoneMatrix : public ::testing::TestWithParam<WindowManagerKind> {};

TEST_P(ZoneMatrix, FillsEveryPresetZoneOfAnOddlyWideMonitorWithEveryClient) {
    DesktopSession desktop(XServer::virtualScreen({1366, 768}));
    ASSERT_TRUE(desktop.startWindowManager(GetParam()));
    X11TestPlatform platform(desktop.display());
    ASSERT_TRUE(waitUntil([&] { return platform.accessibility.isTrusted(); }));
    for (const ClientKind kind : clientKinds) {
        SCOPED_TRACE(name(kind));
        const TestClient client = startClient(desktop, kind, QRect(160, 120, 500, 320));
        ASSERT_NE(client.window, 0U);
        const Tally tally =
            snapEverywhere(desktop, platform, client, rulesFor(desktop, GetParam(), kind, client));
        record(name(GetParam()), "1366x768", kind, tally);
        client.process->stop();
    }
}

INSTANTIATE_TEST_SUITE_P(Under, ZoneMatrix,
                         ::testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                           WindowManagerKind::kwin, WindowManagerKind::marco,
                                           WindowManagerKind::mutter, WindowManagerKind::muffin,
                                           WindowManagerKind::icewm, WindowManagerKind::fluxbox,
                                           WindowManagerKind::i3, WindowManagerKind::awesome,
                                           WindowManagerKind::pekwm, WindowManagerKind::wmaker),
                         managerName);

class ZoneMatrixComposited : public ::testing::TestWithParam<WindowManagerKind> {};

TEST_P(ZoneMatrixComposited, FillsEveryPresetZoneWithClientsOfEitherDecoration) {
    DesktopSession desktop(XServer::virtualScreen({1366, 768}));
    ASSERT_TRUE(desktop.startWindowManager(GetParam(), Compositing::on));
    X11TestPlatform platform(desktop.display());
    ASSERT_TRUE(waitUntil([&] { return platform.accessibility.isTrusted(); }));
    for (const ClientKind kind : {ClientKind::qt, ClientKind::gtkClientDecorated}) {
        SCOPED_TRACE(name(kind));
        const TestClient client = startClient(desktop, kind, QRect(160, 120, 500, 320));
        ASSERT_NE(client.window, 0U);
        // Where the window manager knows of shadows, the client draws one now.
        const XInspector& inspector = desktop.inspector();
        const bool drawsShadow = !inspector.property(client.window, "_GTK_FRAME_EXTENTS").empty();
        EXPECT_EQ(drawsShadow,
                  kind == ClientKind::gtkClientDecorated &&
                      inspector.hasAtom(inspector.root(), "_NET_SUPPORTED", "_GTK_FRAME_EXTENTS"));
        const Tally tally =
            snapEverywhere(desktop, platform, client, rulesFor(desktop, GetParam(), kind, client));
        record(name(GetParam()), "1366x768, composited", kind, tally);
        client.process->stop();
    }
}

// Mutter and muffin composite in every test.
INSTANTIATE_TEST_SUITE_P(Under, ZoneMatrixComposited,
                         ::testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                           WindowManagerKind::marco),
                         managerName);

class ZoneMatrixOnTwoOutputs : public ::testing::TestWithParam<WindowManagerKind> {};

TEST_P(ZoneMatrixOnTwoOutputs, FillsEveryPresetZoneOfBothBesideAPanelWithEveryClient) {
    DesktopSession desktop(XServer::twoOutputs());
    ASSERT_TRUE(desktop.startWindowManager(GetParam()));
    X11TestPlatform platform(desktop.display());
    ASSERT_TRUE(waitUntil([&] { return platform.accessibility.isTrusted(); }));
    ASSERT_EQ(platform.screens.all().size(), 2U);
    const AppKitRect right = platform.screens.all()[1]->frame();
    const auto from = static_cast<int>(right.x);
    const auto to = static_cast<int>(right.maxX());
    // Along the top of the right monitor.
    const BareClient panel(desktop.display(), QRect(from, 0, to - from, 40),
                           {0, 0, 40, 0, 0, 0, 0, 0, quint32(from), quint32(to - 1), 0, 0});
    ASSERT_TRUE(waitUntil(
        [&] { return platform.screens.all()[1]->visibleFrame().height == right.height - 40; }));
    EXPECT_EQ(platform.screens.all()[0]->visibleFrame(), platform.screens.all()[0]->frame());
    for (const ClientKind kind : clientKinds) {
        SCOPED_TRACE(name(kind));
        const TestClient client = startClient(desktop, kind, QRect(160, 120, 500, 320));
        ASSERT_NE(client.window, 0U);
        const Tally tally =
            snapEverywhere(desktop, platform, client, rulesFor(desktop, GetParam(), kind, client));
        record(name(GetParam()), "two outputs, panel on one", kind, tally);
        client.process->stop();
    }
}

INSTANTIATE_TEST_SUITE_P(Under, ZoneMatrixOnTwoOutputs,
                         ::testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                           WindowManagerKind::kwin, WindowManagerKind::mutter),
                         managerName);
