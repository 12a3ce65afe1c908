// A companion gone mad, on a real bus: the core, its overlay and its panel go on.

#include "CompanionNoise.h"
#include "GnomeSnapTest.h"

#include <QPainter>
#include <QWidget>

namespace tilewright::testing {
namespace {

constexpr int control = 2;
constexpr int tellingsPerStorm = 1000;

class BareChrome final : public PanelChrome {
public:
    QMargins margins(PanelRendering) const override { return {}; }
    void paint(QPainter&, const QRect&, const QPalette&, PanelRendering) override {}
};

class GnomeStorm : public GnomeSnapTest {
protected:
    GnomeStorm()
        : panel(platform->makePanelSurface(makeView, std::make_unique<BareChrome>())) {
        QObject::connect(panel.get(), &PanelSurface::opened, panel.get(), [this] { ++openings; });
        shell.onCommand = [this](const QJsonObject& command) {
            overlays += command[QStringLiteral("c")] == QStringLiteral("overlay") ? 1 : 0;
        };
    }
    [[nodiscard]] static std::unique_ptr<QWidget> makeView() {
        auto view = std::make_unique<QWidget>();
        view->setFixedSize(300, 200);
        return view;
    }
    void rage(unsigned seed) {
        CompanionNoise noise(seed);
        for (int telling = 0; telling < tellingsPerStorm; ++telling) {
            const auto [method, text] = noise.anyMessage();
            // A companion that greets shows nothing, and has forgotten what it was told.
            if (method == QStringLiteral("Hello"))
                forget();
            shell.call(method.toLatin1().constData(), text);
            if (noise.oneIn(3))
                goOnDragging();
            if (noise.oneIn(20))
                panel->toggle(AppKitRect{700, 500, 24, 24});
            if (noise.oneIn(60))
                panel->close();
            if (noise.oneIn(200)) {
                shell.extensionState = noise.oneIn(2) ? 1 : 2;
                shell.announceExtension();
            }
            if (noise.oneIn(10))
                expectAnswers();
        }
        expectAnswers();
    }
    /// In the midst of the nonsense the user drags windows, one after the other.
    void goOnDragging() {
        const int step = dragSteps++ % 5;
        const int serial = 100 + dragSteps / 5;
        if (step == 0)
            shell.call("Displays", R"({"displays":[)" + displayText() + "]}");
        else if (step == 1)
            shell.call("DragBegin", dragText(serial, "[300,500]", 0));
        else if (step == 4)
            shell.call("DragEnd", dragEndText(serial, "[303,500]", control, false));
        else
            shell.call("DragMotion",
                       dragText(serial, "[30" + QByteArray::number(step) + ",500]", control));
    }
    void expectAnswers() {
        ASSERT_TRUE(waitUntil([this] { return shell.isAnswered(); }));
        for (const QString& answer : std::as_const(shell.answers)) {
            EXPECT_LE(answer.size(), 64 * 1024);
            EXPECT_LE(QJsonDocument::fromJson(answer.toUtf8())
                          .object()[QStringLiteral("do")]
                          .toArray()
                          .size(),
                      32);
        }
        shell.answers.clear();
    }
    void forget() {
        shell.overlay.reset();
        shell.panel.reset();
        shell.frames.clear();
    }
    [[nodiscard]] bool isPanelShown() const {
        return shell.panel && (*shell.panel)[QStringLiteral("shown")].toBool();
    }
    /// What has to be after everything that may have been, once the shell says that it is well, in
    /// the midst of a drag and with the panel open.
    void expectToGoOn() {
        shell.extensionState = 1;
        shell.announceExtension();
        shell.call("Hello", helloText());
        shell.call("DragBegin", dragText(1, "[300,500]", 0));
        shell.call("DragMotion", dragText(1, "[302,500]", control));
        expectAnswers();
        panel->open(AppKitRect{700, 500, 24, 24});
        EXPECT_TRUE(SnapController::shared().overlayVisible());
        EXPECT_TRUE(panel->isOpen());
        forget();
        shell.greet(helloText(displayText(), windowText(3)));
        expectAnswers();
        EXPECT_FALSE(SnapController::shared().isDragging());
        EXPECT_FALSE(SnapController::shared().overlayVisible());
        EXPECT_FALSE(shell.overlay);
        EXPECT_FALSE(panel->isOpen());
        EXPECT_FALSE(isPanelShown());
        EXPECT_TRUE(shell.frames.empty());

        tell("DragBegin", dragText(1, "[300,500]", 0));
        tell("DragMotion", dragText(1, "[302,500]", control));
        EXPECT_TRUE(shell.overlay);
        tell("DragEnd", dragEndText(1, "[302,500]", control, false));
        EXPECT_FALSE(shell.overlay);
        EXPECT_TRUE(shell.frames.contains(7));
        panel->open(AppKitRect{700, 500, 24, 24});
        EXPECT_TRUE(waitUntil([this] { return isPanelShown(); }));
        panel->close();
        EXPECT_TRUE(waitUntil([this] { return !isPanelShown(); }));
    }

    std::unique_ptr<PanelSurface> panel;
    int openings = 0;
    int dragSteps = 0;
    int overlays = 0;
};

} // namespace

TEST_F(GnomeStorm, LeavesNothingShownOrHeldWhateverIsToldInWhateverOrder) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        rage(seed);
        expectToGoOn();
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(openings, 100);
    EXPECT_GT(overlays, 100) << "hardly anything of the storm was understood";
    EXPECT_GT(shell.errors.size(), 100) << "it told next to no nonsense";
    // The shell's end, in the midst of it.
    rage(5);
    shell.leave();
    EXPECT_TRUE(waitUntil([this] { return !platform->accessibility.isTrusted(); }));
    EXPECT_FALSE(SnapController::shared().isDragging());
    EXPECT_FALSE(SnapController::shared().overlayVisible());
    panel->close();
    EXPECT_FALSE(panel->isOpen());
}

} // namespace tilewright::testing
