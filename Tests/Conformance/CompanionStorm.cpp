#include "CompanionStorm.h"

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

std::unique_ptr<QWidget> makeView() {
    auto view = std::make_unique<QWidget>();
    view->setFixedSize(300, 200);
    return view;
}

} // namespace

CompanionStorm::CompanionStorm(Platform& platform, MockTeller& teller)
    : panel(platform.makePanelSurface(makeView, std::make_unique<BareChrome>()))
    , platform_(platform)
    , teller_(teller) {
    QObject::connect(panel.get(), &PanelSurface::opened, panel.get(), [this] { ++openings_; });
}

void CompanionStorm::expectToGoOnAfterEach() {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        rage(seed);
        expectToGoOn();
        ASSERT_FALSE(::testing::Test::HasFailure());
    }
    EXPECT_GT(openings_, 100);
    EXPECT_GT(overlays, 100) << "hardly anything of the storm was understood";
    EXPECT_GT(teller_.errors.size(), 100) << "it told next to no nonsense";
}

void CompanionStorm::expectToEndWell() {
    rage(5);
    leave();
    EXPECT_TRUE(waitUntil([this] { return !platform_.accessibility.isTrusted(); }));
    EXPECT_FALSE(SnapController::shared().isDragging());
    EXPECT_FALSE(SnapController::shared().overlayVisible());
    panel->close();
    EXPECT_FALSE(panel->isOpen());
}

void CompanionStorm::rage(unsigned seed) {
    CompanionNoise noise(seed);
    for (int telling = 0; telling < tellingsPerStorm; ++telling) {
        const auto [method, text] = noise.anyMessage();
        // A companion that greets shows nothing, and has forgotten what it was told.
        if (method == QStringLiteral("Hello"))
            forget();
        teller_.call(method.toLatin1().constData(), text);
        if (noise.oneIn(3))
            goOnDragging();
        if (noise.oneIn(20))
            panel->toggle(AppKitRect{700, 500, 24, 24});
        if (noise.oneIn(60))
            panel->close();
        disturb(noise);
        if (noise.oneIn(10))
            expectAnswers();
    }
    expectAnswers();
}

/// In the midst of the nonsense the user drags windows, one after the other.
void CompanionStorm::goOnDragging() {
    const int step = dragSteps_++ % 5;
    const int serial = 100 + dragSteps_ / 5;
    if (step == 0)
        teller_.call("Displays", R"({"displays":[)" + displayText() + "]}");
    else if (step == 1)
        teller_.call("DragBegin", dragText(serial, "[300,500]", 0));
    else if (step == 4)
        teller_.call("DragEnd", dragEndText(serial, "[303,500]", control, false));
    else
        teller_.call("DragMotion",
                     dragText(serial, "[30" + QByteArray::number(step) + ",500]", control));
}

void CompanionStorm::expectAnswers() {
    ASSERT_TRUE(waitUntil([this] { return teller_.isAnswered(); }));
    for (const QString& answer : std::as_const(teller_.answers)) {
        EXPECT_LE(answer.size(), 64 * 1024);
        EXPECT_LE(QJsonDocument::fromJson(answer.toUtf8())
                      .object()[QStringLiteral("do")]
                      .toArray()
                      .size(),
                  32);
    }
    teller_.answers.clear();
}

void CompanionStorm::forget() {
    teller_.overlay.reset();
    teller_.panel.reset();
    teller_.frames.clear();
}

/// What has to be after everything that may have been, once the compositor says that it is well,
/// in the midst of a drag and with the panel open.
void CompanionStorm::expectToGoOn() {
    const auto tell = [this](const char* method, const QByteArray& text) {
        teller_.call(method, text);
        expectAnswers();
    };
    const auto dragIntoZone = [&] {
        tell("DragBegin", dragText(1, "[300,500]", 0));
        setControl(true);
        tell("DragMotion", dragText(1, "[302,500]", control));
        EXPECT_TRUE(waitUntil([] { return SnapController::shared().overlayVisible(); }));
        EXPECT_TRUE(waitUntil([this] { return isOverlayShown(); }));
    };
    calm();
    tell("Hello", helloText());
    dragIntoZone();
    panel->open(AppKitRect{700, 500, 24, 24});
    EXPECT_TRUE(panel->isOpen());
    forget();
    greet(helloText(displayText(), windowText(3)));
    expectAnswers();
    EXPECT_FALSE(SnapController::shared().isDragging());
    EXPECT_FALSE(SnapController::shared().overlayVisible());
    EXPECT_TRUE(waitUntil([this] { return !isOverlayShown(); }));
    EXPECT_FALSE(panel->isOpen());
    EXPECT_FALSE(isPanelShown());
    EXPECT_TRUE(teller_.frames.empty());

    setControl(false);
    dragIntoZone();
    tell("DragEnd", dragEndText(1, "[302,500]", control, false));
    EXPECT_TRUE(waitUntil([this] { return !isOverlayShown(); }));
    EXPECT_TRUE(teller_.frames.contains(7));
    setControl(false);
    panel->open(AppKitRect{700, 500, 24, 24});
    EXPECT_TRUE(waitUntil([this] { return isPanelShown(); }));
    panel->close();
    EXPECT_TRUE(waitUntil([this] { return !isPanelShown(); }));
}

} // namespace tilewright::testing
