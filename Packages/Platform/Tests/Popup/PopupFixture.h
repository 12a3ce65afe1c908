#pragma once

#include <FakePlatform.h>
#include <Platform/PanelContent.h>
#include <Popup/PopupPanelSurface.h>

#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace tilewright::testing {
/// A margin where the desktop blends windows, none elsewhere, and nothing painted.
class PlainChrome final : public PanelChrome {
public:
    static constexpr int margin = 10;

    QMargins margins(PanelRendering rendering) const override {
        return rendering == PanelRendering::translucent ? QMargins(margin, margin, margin, margin)
                                                        : QMargins();
    }
    void paint(QPainter&, const QRect& surface, const QPalette&,
               PanelRendering rendering) override {
        paintings.emplace_back(surface, rendering);
    }

    std::vector<std::pair<QRect, PanelRendering>> paintings;
};

/// Content that may grow by as much as it is told.
class GrowingContent final : public QWidget, public PanelContent {
public:
    explicit GrowingContent(int room)
        : room_(room) {}
    [[nodiscard]] int roomToGrow() const override { return room_; }

private:
    int room_;
};

/// The panel over a stand-in for its content, on Qt's offscreen screen.
struct PopupPanelSurfaceTest : public ::testing::Test {
    PopupPanelSurfaceTest() {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        const AppKitRect frame{0, 0, double(screen.width()), double(screen.height())};
        AppKitRect visible = frame;
        visible.height -= barHeight;
        FakeScreen::Values values;
        values.frame = frame;
        values.visibleFrame = visible;
        platform.fakeScreens.setScreens({makeScreen(values)});
        movePointer(itemPlace.center());
        auto chrome = std::make_unique<PlainChrome>();
        paintings = &chrome->paintings;
        surface = std::make_unique<PopupPanelSurface>(
            platform, [this](auto then) { platform.fakeMainLoop.post(std::move(then)); },
            [this] { return makeView(); }, std::move(chrome));
        QObject::connect(surface.get(), &PanelSurface::opened, [this] { ++openings; });
        QObject::connect(surface.get(), &PanelSurface::dismissed,
                         [this](PanelDismissal why) { dismissals.push_back(why); });
    }
    ~PopupPanelSurfaceTest() override { surface.reset(); }

    std::unique_ptr<QWidget> makeView() {
        ++viewsMade;
        auto view = std::make_unique<GrowingContent>(roomToGrow);
        view->setFixedWidth(300);
        auto* layout = new QVBoxLayout(view.get());
        button = new QPushButton(QStringLiteral("Button"));
        button->setMinimumHeight(40);
        layout->addWidget(button);
        return view;
    }
    void movePointer(QPoint to) {
        const double height = platform.fakeScreens.all().front()->frame().height;
        platform.fakePointer.at = {to.x() + 0.5, height - (to.y() + 0.5)};
    }
    void clickItem() {
        const double height = platform.fakeScreens.all().front()->frame().height;
        surface->toggle(AppKitRect{double(itemPlace.x()),
                                   height - itemPlace.y() - itemPlace.height(),
                                   double(itemPlace.width()), double(itemPlace.height())});
        platform.fakeMainLoop.runPosted();
    }
    /// Moves the bar, with the item on it, to the bottom of the screen.
    void moveBarDown() {
        FakeScreen::Values values;
        values.frame = platform.fakeScreens.all().front()->frame();
        values.visibleFrame = values.frame;
        values.visibleFrame->y += barHeight;
        values.visibleFrame->height -= barHeight;
        itemPlace.moveBottom(static_cast<int>(values.frame.height) - 1);
        movePointer(itemPlace.center());
        platform.fakeScreens.change({makeScreen(values)});
    }
    [[nodiscard]] QRect ground() const { return surface->window().groundGeometry(); }
    void setButtonHeight(int height) {
        button->setMinimumHeight(height);
        QCoreApplication::sendPostedEvents();
    }
    /// Screens side by side and one above the other, each where Qt has it; the first is
    /// the primary one, at Qt's origin.
    void setScreens(const std::vector<QRect>& places) {
        std::vector<ScreenPtr> screens;
        screens.reserve(places.size());
        for (const QRect& place : places) {
            FakeScreen::Values values;
            values.frame = {double(place.x()),
                            double(places.front().height() - place.y() - place.height()),
                            double(place.width()), double(place.height())};
            screens.push_back(makeScreen(values));
        }
        platform.fakeScreens.setScreens(std::move(screens));
    }
    /// A press in another application, as the raw events tell of it.
    void pressElsewhere(QPoint at) {
        movePointer(at);
        platform.fakeMainLoop.runPosted();
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                        {EventType::leftMouseDown, {}});
    }
    void releaseElsewhere() {
        platform.fakeEventMonitors.send(FakeEventMonitors::Kind::global,
                                        {EventType::leftMouseUp, {}});
    }
    [[nodiscard]] bool isOpen() const { return surface->isOpen(); }

    static constexpr int barHeight = 30;
    QRect itemPlace{400, 0, 24, barHeight};
    FakeDesktop desktop;
    FakePlatform& platform = desktop.platform;
    std::unique_ptr<PopupPanelSurface> surface;
    int viewsMade = 0;
    /// What the content made next says.
    int roomToGrow = 0;
    int openings = 0;
    std::vector<PanelDismissal> dismissals;
    std::vector<std::pair<QRect, PanelRendering>>* paintings = nullptr;
    QPushButton* button = nullptr;
};

} // namespace tilewright::testing
