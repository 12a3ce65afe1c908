// What the program tells for a user's report, where it is asked to.

#include "SnapBench.h"

#include <BareClient.h>

#include <QLoggingCategory>
#include <utility>
#include <vector>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;

namespace {

/// Keeps the program's own messages for as long as it lives.
class KeptMessages {
public:
    KeptMessages() {
        messages().clear();
        before_ = qInstallMessageHandler(keep);
    }
    KeptMessages(const KeptMessages&) = delete;
    ~KeptMessages() { qInstallMessageHandler(before_); }

    /// Those of one category, a line each.
    [[nodiscard]] static QString of(const char* category) {
        QString lines;
        for (const auto& [name, text] : messages()) {
            if (name.startsWith(QLatin1StringView(category)))
                lines += text + u'\n';
        }
        return lines;
    }

private:
    static std::vector<std::pair<QString, QString>>& messages() {
        static std::vector<std::pair<QString, QString>> kept;
        return kept;
    }
    static void keep(QtMsgType, const QMessageLogContext& context, const QString& text) {
        messages().emplace_back(QString::fromUtf8(context.category), text);
    }
    QtMessageHandler before_ = nullptr;
};

struct Log : ::testing::Test {
    Log() { EXPECT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox)); }
    ~Log() override { QLoggingCategory::setFilterRules({}); }

    /// Finds a window, and sets it to the left half.
    void snap() {
        X11TestPlatform platform(desktop.display());
        EXPECT_TRUE(waitUntil([&] { return platform.accessibility.isTrusted(); }));
        const BareClient client(desktop.display(), QRect(300, 200, 500, 300));
        window = client.window();
        const QRect frame = desktop.inspector().outerFrame(window);
        const auto element =
            WindowManager::shared().windowElementAtScreenPoint(appKitCentre(platform, frame));
        ASSERT_TRUE(element.has_value());
        const Zone& zone = ZoneLayout::halves().zones[0];
        const Screen& screen = *platform.screens.all().front();
        goal = pixelsOf(zone, screen);
        WindowManager::shared().snap(*element, zone, screen);
        EXPECT_TRUE(waitUntil([&] { return desktop.inspector().outerFrame(window) == goal; }));
        EXPECT_TRUE(settle(platform));
    }

    DesktopSession desktop;
    XInspector::Window window = 0;
    QRect goal;
};

} // namespace

TEST_F(Log, TellsNothingUnlessItIsAskedTo) {
    const KeptMessages messages;
    snap();
    EXPECT_EQ(KeptMessages::of("tilewright"), QString());
}

TEST_F(Log, TellsOfAFrameThatWasAskedForAndOfWhatCameOfIt) {
    QLoggingCategory::setFilterRules(QStringLiteral("tilewright.*=true"));
    const KeptMessages messages;
    snap();
    const QString frames = KeptMessages::of("tilewright.x11.frames");
    const QString name = u"Window 0x"_s + QString::number(window, 16);
    const QString where = QString::fromStdString(text(goal));
    EXPECT_TRUE(frames.contains(name + u" is to fill "_s + where + u" and fills "_s))
        << frames.toStdString();
    EXPECT_TRUE(frames.contains(name + u": asked the window manager for the corner +0+0"_s))
        << frames.toStdString();
    EXPECT_TRUE(frames.contains(name + u" fills "_s + where + u" in the end, asked for "_s + where +
                                u": as asked"_s))
        << frames.toStdString();
    EXPECT_TRUE(KeptMessages::of("tilewright.x11.displays").contains(u", free of panels "_s))
        << frames.toStdString();
}
